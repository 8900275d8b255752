#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace Plugin {

// Walks path down nested objects (a decimal key also indexes an array) and returns
// the text at the end: a string as it stands, a number in its shortest form. Empty
// when any step is missing or the end is no scalar.
QString GetParamValue(const QJsonObject& object, const QStringList& path);

} // namespace Plugin
