#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QDomElement;
class QTextCodec;
class QXmlStreamWriter;

namespace Plugin {

// The file encoding of models and tool boxes.
class Gb2312
{
public:
    // The codec for "gb2312" (Debian's Qt answers with the GBK codec, a superset).
    static QTextCodec* Codec();
    // The declaration every file starts with, without its line end.
    static QString Declaration();
    // Encodes an XML document written without encoding: its declaration is replaced
    // by Declaration(), and characters the codec cannot hold become character
    // references, so that no text is lost.
    static QByteArray EncodeDocument(const QString& xml);
    // The bytes of a file with every character reference beyond the basic plane
    // (&#127757;) turned into the surrogate pair the DOM reader can take; older
    // files that already hold pairs read as they are.
    static QByteArray ReadableReferences(const QByteArray& bytes);
    // Removes from the attributes of element and of every element in it the
    // characters XML cannot hold (controls other than tab and line ends, U+FFFE,
    // U+FFFF). The DOM reader takes them, as bytes or references, but the writer
    // drops them: kept, an object read would mean something else once saved.
    static void DropUnwritableCharacters(const QDomElement& element);
    // Writes a document to path: body writes the root element and what is in it
    // on a formatting writer, and the encoded text replaces the file whole or not
    // at all (WholeFile), so a failed write never costs the old file. False when
    // the file can't be written whole.
    static bool SaveDocument(const QString& path, const std::function<void(QXmlStreamWriter&)>& body);
};

} // namespace Plugin
