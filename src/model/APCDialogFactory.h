#pragma once

#include <functional>

class QWidget;

namespace Plugin {

class APCObject;
class APCObjectDialog;
class APCVar;
class DataTypeWidget;

// The seam between the model's objects and their windows. The objects live in
// the headless core and ask this factory for their dialog and value widget; the
// interface library registers the makers when it loads. Without it (mbrun, the
// headless objects) every request gives null, as a model without windows needs.
class APCDialogFactory
{
public:
    // Which dialog an object class asks for.
    enum Kind { AlgoDialog, ArrowDialog, VarDialog, FileIteratorDialog, ModelFileDialog, KindCount };
    using DialogMaker = std::function<APCObjectDialog*(APCObject* object, QWidget* parent)>;
    using WidgetMaker = std::function<DataTypeWidget*(APCVar* var)>;

    static APCDialogFactory* Instance();

    // A new dialog editing object, owned by the caller; null when none is registered.
    APCObjectDialog* CreateDialog(Kind kind, APCObject* object, QWidget* parent) const;
    // A new value widget for var, owned by the caller; null when none is registered.
    DataTypeWidget* CreateWidget(APCVar* var) const;

    // Called by the interface library on the GUI thread before any window opens.
    void RegisterDialog(Kind kind, DialogMaker maker);
    void RegisterWidget(WidgetMaker maker);

private:
    DialogMaker m_dialogs[KindCount];
    WidgetMaker m_widget;
};

} // namespace Plugin
