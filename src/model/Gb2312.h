#pragma once

#include <QByteArray>
#include <QString>

class QTextCodec;

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
};

} // namespace Plugin
