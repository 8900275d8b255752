#pragma once

#include <QList>
#include <QSet>
#include <QWidget>

#include <functional>

class QTreeWidgetItem;

namespace Plugin {

class ATBItem;
class ATBTreeWidget;

// The tool box panel: one tree row per valid item. The tree, not the item
// lists, holds the truth about order and deletion; CollectItems brings the
// lists back in line before the file is written.
class ToolBoxWidget : public QWidget
{
    Q_OBJECT
public:
    explicit ToolBoxWidget(QWidget* parent = nullptr);
    ~ToolBoxWidget() override;

    // Takes ownership of items and shows them; mainWindow parents their dialogs.
    void SetItems(QWidget* mainWindow, const QList<ATBItem*>& items);
    // Rebuilds the row of item at the end of its siblings, or drops it when the
    // item is no longer valid, and marks the tool box changed.
    void UpdateItem(ATBItem* item);
    void CollectItems(QList<ATBItem*>& out);
    // Hands write the items as CollectItems would give them, then puts every list
    // back as it was: rows rebuilt later come from the lists as they stood.
    bool WriteItems(const std::function<bool(const QList<ATBItem*>&)>& write);
    bool IsModified() const { return m_modified; }
    // Marks the tree as one its file lacks, as a change does.
    void SetModified() { m_modified = true; }

    ATBTreeWidget* GetTree() const { return m_tree; }
    // The item a row stands for, or null.
    static ATBItem* ItemOf(QTreeWidgetItem* row, int column = 0);

signals:
    // The tree changed.
    void Changed();

public slots:
    void OnItemClicked(QTreeWidgetItem* item, int column);
    void OnItemDoubleClicked(QTreeWidgetItem* item, int column);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void PopulateItems(QTreeWidgetItem* parent, const QList<ATBItem*>& items);
    QTreeWidgetItem* MakeRow(QTreeWidgetItem* parent, ATBItem* item);
    static void CollectChildren(QTreeWidgetItem* row, QList<ATBItem*>& target);

    QList<ATBItem*> m_items; // owned
    // Every item that ever had a row. Items the user deleted drop out of the
    // lists but may still be in use by their own menu handlers; they are freed
    // with the panel.
    QSet<ATBItem*> m_known;
    QList<QTreeWidgetItem*> m_detachedRows; // replaced rows, freed with the panel
    bool m_modified = false;
    QWidget* m_mainWindow = nullptr;
    ATBTreeWidget* m_tree;
};

} // namespace Plugin
