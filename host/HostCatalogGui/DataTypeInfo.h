#pragma once

#include <QString>

namespace Plugin {

// One data type the host knows, as DataTypeFactory lists it.
struct DataTypeInfo
{
    QString type;        // the Param::type string CreateDataTypeWidget takes
    QString label;       // translated text shown to users
    bool isPath = false; // the value names files or folders on disk
};

} // namespace Plugin
