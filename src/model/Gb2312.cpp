#include "model/Gb2312.h"

#include "model/WholeFile.h"

#include <QDomElement>
#include <QDomNamedNodeMap>
#include <QTextCodec>
#include <QXmlStreamWriter>

#include <algorithm>

namespace Plugin {

QTextCodec* Gb2312::Codec()
{
    static QTextCodec* codec = QTextCodec::codecForName("gb2312");
    return codec;
}

QString Gb2312::Declaration()
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"GB2312\" standalone=\"no\"?>");
}

QByteArray Gb2312::EncodeDocument(const QString& xml)
{
    QString text = xml;
    if (text.startsWith(QLatin1String("<?xml"))) {
        const int end = text.indexOf(QLatin1String("?>"));
        if (end >= 0)
            text.replace(0, end + 2, Declaration());
    }
    QTextCodec* codec = Codec();
    if (!codec)
        return text.toUtf8();
    // Most files are plain ASCII, which GB2312 keeps byte for byte: runs of it are
    // copied whole, and only the other characters go through the codec.
    QString safe;
    safe.reserve(text.size());
    const QChar* chars = text.constData();
    const int size = text.size();
    int i = 0;
    while (i < size) {
        int run = i;
        while (run < size && chars[run].unicode() < 0x80)
            ++run;
        if (run > i) {
            if (run == size && i == 0)
                return text.toLatin1();
            safe.append(chars + i, run - i);
            i = run;
            continue;
        }
        const QChar c = chars[i];
        const bool pair = c.isHighSurrogate() && i + 1 < size && chars[i + 1].isLowSurrogate();
        const QString piece(chars + i, pair ? 2 : 1);
        if (codec->canEncode(piece)) {
            safe += piece;
        } else {
            // One reference per character, as every XML reader expects; a lone
            // surrogate has no character to name and is written as its unit.
            const uint code = pair ? QChar::surrogateToUcs4(piece.at(0), piece.at(1)) : c.unicode();
            safe += QStringLiteral("&#x%1;").arg(code, 0, 16);
        }
        i += pair ? 2 : 1;
    }
    return codec->fromUnicode(safe);
}

QByteArray Gb2312::ReadableReferences(const QByteArray& bytes)
{
    // References are plain ASCII, and no byte of "&#...;" can be the second byte
    // of a GBK character, so the bytes can be scanned without decoding them.
    QByteArray out;
    int copied = 0;
    for (int at = bytes.indexOf("&#"); at >= 0; at = bytes.indexOf("&#", at + 2)) {
        const int end = bytes.indexOf(';', at);
        if (end < 0)
            break;
        const bool hex = at + 2 < end && (bytes.at(at + 2) == 'x' || bytes.at(at + 2) == 'X');
        const QByteArray digits = bytes.mid(at + (hex ? 3 : 2), end - at - (hex ? 3 : 2));
        bool ok = false;
        const uint code = digits.toUInt(&ok, hex ? 16 : 10);
        if (!ok || code <= 0xFFFF || code > 0x10FFFF)
            continue;
        // The DOM reader keeps a reference only to a single UTF-16 unit: name the
        // character by its two surrogates, which it joins back together.
        out += bytes.mid(copied, at - copied);
        out += QStringLiteral("&#x%1;&#x%2;")
                   .arg(QChar::highSurrogate(code), 0, 16)
                   .arg(QChar::lowSurrogate(code), 0, 16)
                   .toLatin1();
        copied = end + 1;
    }
    if (copied == 0)
        return bytes;
    out += bytes.mid(copied);
    return out;
}

void Gb2312::DropUnwritableCharacters(const QDomElement& element)
{
    auto unwritable = [](QChar c) {
        const ushort u = c.unicode();
        return (u < 0x20 && u != '\t' && u != '\n' && u != '\r') || u == 0xFFFE || u == 0xFFFF;
    };
    // Depth first without recursion: a file may nest elements deeply.
    QDomElement e = element;
    while (!e.isNull()) {
        const QDomNamedNodeMap attributes = e.attributes();
        for (int i = 0; i < attributes.count(); ++i) {
            QDomNode attribute = attributes.item(i);
            const QString value = attribute.nodeValue();
            if (std::none_of(value.cbegin(), value.cend(), unwritable))
                continue;
            QString kept;
            for (const QChar c : value)
                if (!unwritable(c))
                    kept += c;
            attribute.setNodeValue(kept);
        }
        QDomElement next = e.firstChildElement();
        for (QDomElement up = e; next.isNull() && up != element; up = up.parentNode().toElement())
            next = up.nextSiblingElement();
        e = next;
    }
}

bool Gb2312::SaveDocument(const QString& path, const std::function<void(QXmlStreamWriter&)>& body)
{
    // Written as text, then encoded: the declaration must name GB2312 whatever
    // the codec calls itself, and no character may be lost on the way.
    QString text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    writer.writeStartDocument(QStringLiteral("1.0"), false);
    body(writer);
    writer.writeEndDocument();
    return WholeFile::Save(path, EncodeDocument(text));
}

} // namespace Plugin
