#include "HostCatalogGui/DataTypeFactory.h"

#include "HostCatalogGui/DefaultDataWidget.h"
#include "HostCatalogGui/FileDataWidget.h"
#include "HostCatalogGui/FilePathDataWidget.h"
#include "HostCatalogGui/FilterDataWidget.h"
#include "HostCatalogGui/FloatDataWidget.h"
#include "HostCatalogGui/FolderDataWidget.h"
#include "HostCatalogGui/IntDataWidget.h"
#include "HostCatalogGui/LongDataWidget.h"
#include "HostCatalogGui/MultiDirectoryDataWidget.h"
#include "HostCatalogGui/MultiFileWidget.h"
#include "HostCatalogGui/SpatialReferenceDataWidget.h"
#include "HostCatalogGui/StringDataWidget.h"

#include <QCoreApplication>

#include <functional>
#include <vector>

namespace Plugin {

namespace {

using Make = std::function<DataTypeWidget*(const QString& typeParam)>;

struct Entry
{
    const char* type;
    const char* label; // translated in the context "DataTypeFactory"
    bool isPath;
    Make make;
};

// The one table of types: what is listed and what is made cannot drift apart.
const std::vector<Entry>& entries()
{
    static const std::vector<Entry> table = {
        {"file", QT_TRANSLATE_NOOP("DataTypeFactory", "File"), true,
         [](const QString& p) { return new FileDataWidget(p); }},
        {"filePath", QT_TRANSLATE_NOOP("DataTypeFactory", "File to write"), true,
         [](const QString& p) { return new FilePathDataWidget(p); }},
        {"folder", QT_TRANSLATE_NOOP("DataTypeFactory", "Folder"), true,
         [](const QString&) { return new FolderDataWidget; }},
        {"multiFile", QT_TRANSLATE_NOOP("DataTypeFactory", "Files"), true,
         [](const QString& p) { return new MultiFileWidget(p); }},
        {"multiDirectory", QT_TRANSLATE_NOOP("DataTypeFactory", "Folders"), true,
         [](const QString&) { return new MultiDirectoryDataWidget; }},
        {"filter", QT_TRANSLATE_NOOP("DataTypeFactory", "File filter"), false,
         [](const QString&) { return new FilterDataWidget; }},
        {"string", QT_TRANSLATE_NOOP("DataTypeFactory", "Text"), false,
         [](const QString&) { return new StringDataWidget; }},
        {"int", QT_TRANSLATE_NOOP("DataTypeFactory", "Integer"), false,
         [](const QString&) { return new IntDataWidget; }},
        {"long", QT_TRANSLATE_NOOP("DataTypeFactory", "Long integer"), false,
         [](const QString&) { return new LongDataWidget; }},
        {"float", QT_TRANSLATE_NOOP("DataTypeFactory", "Real number"), false,
         [](const QString&) { return new FloatDataWidget; }},
        {"spatialReference", QT_TRANSLATE_NOOP("DataTypeFactory", "Spatial reference"), false,
         [](const QString&) { return new SpatialReferenceDataWidget; }},
    };
    return table;
}

} // namespace

QList<DataTypeInfo> DataTypeFactory::GetDataTypeInfo()
{
    QList<DataTypeInfo> result;
    for (const Entry& e : entries())
        result.append({QString::fromLatin1(e.type), QCoreApplication::translate("DataTypeFactory", e.label), e.isPath});
    return result;
}

DataTypeWidget* DataTypeFactory::CreateDataTypeWidget(const QString& type, const QString& typeParam)
{
    for (const Entry& e : entries()) {
        if (type == QLatin1String(e.type))
            return e.make(typeParam);
    }
    return new DefaultDataWidget;
}

} // namespace Plugin
