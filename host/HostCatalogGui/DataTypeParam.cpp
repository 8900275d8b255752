#include "HostCatalogGui/DataTypeParam.h"

#include "HostCatalog/GetParamValue.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Plugin {

DataTypeParam DataTypeParam::Parse(const QString& text)
{
    DataTypeParam result;
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject())
        return result;
    const QJsonObject object = doc.object();
    // GetParamValue reads "1" and 1 alike, as the runner's parameters are read.
    result.m_output = GetParamValue(object, {QStringLiteral("direction")}) == QLatin1String("1");
    result.m_nameFilter = GetParamValue(object, {QStringLiteral("filter")});
    return result;
}

} // namespace Plugin
