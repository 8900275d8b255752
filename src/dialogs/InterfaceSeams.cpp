// What the interface library offers the core's objects, registered when the
// library loads: their value widgets now, their dialogs as each one lands.
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/APCAlgoDlg.h"
#include "dialogs/APCArrowDlg.h"
#include "dialogs/APCFileIteratorDlg.h"
#include "dialogs/APCModelFileDlg.h"
#include "dialogs/APCVarDlg.h"
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
    factory->RegisterDialog(APCDialogFactory::ArrowDialog,
                            [](APCObject* object, QWidget* parent) { return new APCArrowDlg(object, parent); });
    factory->RegisterDialog(APCDialogFactory::FileIteratorDialog,
                            [](APCObject* object, QWidget* parent) { return new APCFileIteratorDlg(object, parent); });
    factory->RegisterDialog(APCDialogFactory::VarDialog, [](APCObject* object, QWidget* parent) -> APCObjectDialog* {
        return new APCVarDlg(object, parent);
    });
    factory->RegisterDialog(APCDialogFactory::ModelFileDialog,
                            [](APCObject* object, QWidget* parent) { return new APCModelFileDlg(object, parent); });
    return true;
}();

} // namespace
} // namespace Plugin
