// What the interface library offers the core's objects, registered when the
// library loads: their value widgets now, their dialogs as each one lands.
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "model/APCDialogFactory.h"
#include "model/APCVar.h"

namespace Plugin {
namespace {

[[maybe_unused]] const bool registered = [] {
    APCDialogFactory* factory = APCDialogFactory::Instance();
    factory->RegisterWidget(
        [](APCVar* var) { return DataTypeFactory::CreateDataTypeWidget(var->GetClass(), var->GetTypeParam()); });
    return true;
}();

} // namespace
} // namespace Plugin
