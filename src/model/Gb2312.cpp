#include "model/Gb2312.h"

#include <QTextCodec>

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

} // namespace Plugin
