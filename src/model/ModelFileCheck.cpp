#include "model/ModelFileCheck.h"

#include "model/Gb2312.h"

#include <QDomDocument>
#include <QFile>
#include <QFileInfo>

namespace Plugin {

QString ModelFileCheck::Explain(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("no such file");
    if (info.isDir())
        return QStringLiteral("it is a folder");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("it cannot be read (%1)").arg(file.errorString());
    // The bytes as the model's reader sees them.
    const QByteArray bytes = Gb2312::ReadableReferences(file.readAll());
    QDomDocument doc;
    QString message;
    int line = 0, column = 0;
    if (!doc.setContent(bytes, true, &message, &line, &column))
        return QStringLiteral("it is not XML: %1 at line %2, column %3").arg(message, QString::number(line), QString::number(column));
    const QString root = doc.documentElement().tagName();
    if (root != QLatin1String("Configuration"))
        return QStringLiteral("its root element is \"%1\", not \"Configuration\"").arg(root);
    return QStringLiteral("it cannot be read as a model");
}

} // namespace Plugin
