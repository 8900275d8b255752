#pragma once

#include "HostCatalogGui/DataTypeInfo.h"

#include <QList>
#include <QString>

namespace Plugin {

class DataTypeWidget;

// The data types the host knows and their value widgets.
class DataTypeFactory
{
public:
    // Every data type, in a fixed order, with translated labels.
    static QList<DataTypeInfo> GetDataTypeInfo();
    // A new widget for type (a Param::type string; an unknown one gets a plain line
    // edit) set up by typeParam, a JSON object text that may be empty or even bad.
    // Owned by the caller, or by the layout it is put in.
    static DataTypeWidget* CreateDataTypeWidget(const QString& type, const QString& typeParam);
};

} // namespace Plugin
