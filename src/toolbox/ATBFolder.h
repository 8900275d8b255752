#pragma once

#include "toolbox/ATBContainer.h"

#include <QPointer>

class QAction;
class QDialog;
class QLineEdit;
class QMenu;

namespace Plugin {

// A tool set: a folder of models and further tool sets. Its menu makes tool sets
// and models in it and imports models; only a folder made deletable offers
// "Delete", and that entry is locked while any model window is open.
class ATBFolder : public ATBContainer
{
public:
    explicit ATBFolder(bool canDelete);
    // Deletes the children, then the menu, then the name dialog.
    ~ATBFolder() override;

    // Stores parent, and the first time builds the menu and the tool-set name
    // dialog (a child of parent).
    void SetParentWidget(QWidget* parent) override;
    // Shows the menu at the pointer; true.
    bool OnContextMenu(QContextMenuEvent* event) override;

    bool GetCanDelete() const { return m_canDelete; }

    // Where a model imported from source is copied, relative to the application
    // root: "Model/apc/" and source's file name, or, when that is taken,
    // "Model/apc/BASE(n).apc" with the first free n (BASE ends at the first point).
    static QString ImportTarget(const QString& source);

private:
    void OnNewToolSet();
    void OnNewModel();
    void OnDeleteFolder();
    void OnImportModel();
    void OnInspectTimer();

    bool m_canDelete;
    QMenu* m_menu = nullptr;           // owned
    QPointer<QDialog> m_dialog;        // owned, but a child of the parent widget, which may die first
    QLineEdit* m_nameEdit = nullptr;   // child of the dialog
    QAction* m_deleteAction = nullptr; // null when the folder can't be deleted
};

} // namespace Plugin
