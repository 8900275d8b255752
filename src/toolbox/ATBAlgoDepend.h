#pragma once

#include "toolbox/ATBFile.h"

class QAction;
class QMenu;

namespace Plugin {

class ModelControler;

// A model file of the tool box ("Model/apc/NAME.apc" below the application root).
// Its menu removes, edits and exports the model; a read-only model only exports,
// and "Remove" and "Edit" are locked while any model window is open.
class ATBAlgoDepend : public ATBFile
{
public:
    explicit ATBAlgoDepend(bool readOnly);
    ~ATBAlgoDepend() override;

    bool GetReadOnly() const { return m_readOnly; }

    // Opens the model's editor window, unless one is open for it already.
    void OnDoubleClicked() override;
    // Shows the menu at the pointer; true.
    bool OnContextMenu(QContextMenuEvent* event) override;

    // Opens the model's window, showing the whole model, and hands it to the
    // command manager, which owns it. A window open for the model already is
    // returned as it is, not even raised.
    ModelControler* OpenWindow();

private:
    void OnRemove();
    void OnEdit();
    void OnExport();
    void OnInspectTimer();

    bool m_readOnly;
    QMenu* m_menu;                     // owned
    QAction* m_removeAction = nullptr; // null when read-only
    QAction* m_editAction = nullptr;   // null when read-only
};

} // namespace Plugin
