// What the interface library offers the core's objects, registered when the
// library loads: their value widgets now, their dialogs as each one lands.
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/APCAlgoDlg.h"
#include "model/APCDialogFactory.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

namespace Plugin {
namespace {

[[maybe_unused]] const bool registered = [] {
    APCDialogFactory* factory = APCDialogFactory::Instance();
    factory->RegisterWidget(
        [](APCVar* var) { return DataTypeFactory::CreateDataTypeWidget(var->GetClass(), var->GetTypeParam()); });
    factory->RegisterDialog(APCDialogFactory::AlgoDialog, [](APCObject* object, QWidget* parent) -> APCObjectDialog* {
        return new APCAlgoDlg(static_cast<APCProcess*>(object), parent);
    });
    return true;
}();

} // namespace
} // namespace Plugin
