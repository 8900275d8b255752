#include "model/Gb2312.h"

#include <QSaveFile>
#include <QTextCodec>
#include <QXmlStreamWriter>

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
    QString safe;
    safe.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.unicode() < 0x80) {
            safe += c;
            continue;
        }
        const bool pair = c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const QString piece = pair ? text.mid(i, 2) : QString(c);
        if (codec->canEncode(piece)) {
            safe += piece;
        } else {
            // One reference per UTF-16 unit: the DOM reader maps a reference to a
            // single unit, so a pair of them restores characters beyond the BMP.
            for (const QChar unit : piece)
                safe += QStringLiteral("&#x%1;").arg(unit.unicode(), 0, 16);
        }
        if (pair)
            ++i;
    }
    return codec->fromUnicode(safe);
}

bool Gb2312::SaveDocument(const QString& path, const std::function<void(QXmlStreamWriter&)>& body)
{
    QSaveFile file(path);
    // Where no temporary file can be made beside it (a writable file in a
    // read-only folder), write in place as a plain file would.
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    // Written as text, then encoded: the declaration must name GB2312 whatever
    // the codec calls itself, and no character may be lost on the way.
    QString text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    writer.writeStartDocument(QStringLiteral("1.0"), false);
    body(writer);
    writer.writeEndDocument();
    file.write(EncodeDocument(text));
    return file.commit();
}

} // namespace Plugin
