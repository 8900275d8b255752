#pragma once

#include <QList>
#include <QString>

#include <functional>

class QAction;
class QContextMenuEvent;
class QObject;
class QWidget;

namespace Plugin {

class ToolBoxWidget;

// The kinds of tool box row; the value picks the element name in the file, the
// icon, and what a drop on a model makes.
enum enATBType : int {
    ATB_Group = 0,
    ATB_Folder = 1,
    ATB_AlgoDepend = 2,
    ATB_Algo = 3,
    ATB_Iterator = 4,
    ATB_Python = 5,
};

// One row of the tool box tree. Not a QObject: its menus are wired to functors
// that capture the item.
class ATBItem
{
public:
    explicit ATBItem(int type);
    ATBItem(const ATBItem&) = delete;
    ATBItem& operator=(const ATBItem&) = delete;
    virtual ~ATBItem();

    // Parent of every dialog and message box the item opens; null until set up.
    virtual void SetParentWidget(QWidget* parent);
    virtual int GetType();
    // A single click does nothing for any kind.
    virtual void OnClicked();
    virtual void OnDoubleClicked();
    // True when the event was taken; the base takes it and shows nothing.
    virtual bool OnContextMenu(QContextMenuEvent* event);

    QString GetName() const { return m_name; }
    void SetName(const QString& name) { m_name = name; }
    QString GetDescription() const { return m_description; }
    void SetDescription(const QString& description) { m_description = description; }
    bool IsValid() const { return m_valid != 0; }
    QWidget* GetParentWidget() const { return m_parentWidget; }
    void SetToolBox(ToolBoxWidget* toolBox) { m_toolBox = toolBox; }
    // Rebuilds the item's row and marks the tool box changed; does nothing for an
    // item that has no tool box yet. Every change the user makes ends with it.
    void NotifyChanged();

    // The resource path of the icon of a kind; the iterator shares the algorithm's.
    static QString IconPath(int type);
    // The application root: the binary directory followed by "/../", never normalised.
    static QString AppRoot();

protected:
    // Calls slot at every tick of the model windows' timer, until context dies.
    static void ConnectInspectTimer(QObject* context, const std::function<void()>& slot);
    // Enables actions only while no model window is open; null actions are skipped.
    static void EnableUnlessModelsOpen(const QList<QAction*>& actions);

    int m_type;
    QString m_name;
    QString m_description;
    int m_valid = 1; // 0 once the user deleted the item
    ToolBoxWidget* m_toolBox = nullptr;
    QWidget* m_parentWidget = nullptr;
};

} // namespace Plugin
