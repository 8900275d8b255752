#include "HostCatalog/GetParamValue.h"

#include <QJsonArray>
#include <QJsonValue>

namespace Plugin {

QString GetParamValue(const QJsonObject& object, const QStringList& path)
{
    if (path.isEmpty())
        return {};
    QJsonValue current(object);
    for (const QString& key : path) {
        if (current.isObject()) {
            const QJsonObject o = current.toObject();
            auto it = o.constFind(key);
            if (it == o.constEnd())
                return {};
            current = it.value();
        } else if (current.isArray()) {
            bool ok = false;
            const int index = key.toInt(&ok, 10);
            const QJsonArray a = current.toArray();
            if (!ok || index < 0 || index >= a.size())
                return {};
            current = a.at(index);
        } else {
            return {};
        }
    }
    if (current.isString())
        return current.toString();
    if (current.isDouble())
        return QString::number(current.toDouble(), 'g', 17);
    if (current.isBool())
        return current.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    return {};
}

} // namespace Plugin
