#include "toolbox/ToolBoxWidget.h"

#include "toolbox/ATBContainer.h"
#include "toolbox/ATBTreeWidget.h"

#include <QCoreApplication>
#include <QContextMenuEvent>
#include <QHash>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QTreeWidgetItemIterator>

#include <functional>

namespace Plugin {

namespace {

bool hasChildren(int type) { return type == ATB_Group || type == ATB_Folder; }

} // namespace

ToolBoxWidget::ToolBoxWidget(QWidget* parent) : QWidget(parent), m_tree(new ATBTreeWidget(this))
{
    setObjectName(QStringLiteral("ToolBoxWidget"));
    setWindowTitle(QCoreApplication::translate("ToolBoxWidget", "Tool Box"));
    resize(311, 584);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_tree);
    m_tree->setColumnCount(1);
    m_tree->header()->setVisible(false);
    m_tree->setAcceptDrops(true);
    connect(m_tree, &QTreeWidget::itemClicked, this, &ToolBoxWidget::OnItemClicked);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, &ToolBoxWidget::OnItemDoubleClicked);
}

ToolBoxWidget::~ToolBoxWidget()
{
    qDeleteAll(m_detachedRows);
    // What the lists still hold is freed through its containers; the rest, the
    // deleted items, one by one (their own child lists are dropped first, as
    // those children are deleted items too).
    QSet<ATBItem*> reachable;
    std::function<void(const QList<ATBItem*>&)> reach = [&](const QList<ATBItem*>& items) {
        for (ATBItem* item : items) {
            reachable.insert(item);
            if (auto* container = dynamic_cast<ATBContainer*>(item))
                reach(container->GetChildren());
        }
    };
    reach(m_items);
    QList<ATBItem*> orphans;
    for (ATBItem* item : qAsConst(m_known))
        if (!reachable.contains(item))
            orphans.append(item);
    for (ATBItem* item : orphans)
        if (auto* container = dynamic_cast<ATBContainer*>(item))
            container->GetChildren().clear();
    qDeleteAll(orphans);
    qDeleteAll(m_items);
}

void ToolBoxWidget::SetItems(QWidget* mainWindow, const QList<ATBItem*>& items)
{
    m_mainWindow = mainWindow;
    m_items = items;
    PopulateItems(m_tree->invisibleRootItem(), items);
}

QTreeWidgetItem* ToolBoxWidget::MakeRow(QTreeWidgetItem* parent, ATBItem* item)
{
    auto* row = new QTreeWidgetItem(parent, QStringList{item->GetName()});
    row->setData(0, Qt::UserRole, QVariant::fromValue(static_cast<void*>(item)));
    return row;
}

void ToolBoxWidget::PopulateItems(QTreeWidgetItem* parent, const QList<ATBItem*>& items)
{
    for (ATBItem* item : items) {
        if (!item->IsValid())
            continue;
        item->SetToolBox(this);
        m_known.insert(item);
        if (!item->GetParentWidget())
            item->SetParentWidget(m_mainWindow);
        QTreeWidgetItem* row = MakeRow(parent, item);
        row->setIcon(0, QIcon(ATBItem::IconPath(item->GetType())));
        if (hasChildren(item->GetType()))
            if (auto* container = dynamic_cast<ATBContainer*>(item))
                PopulateItems(row, container->GetChildren());
    }
}

ATBItem* ToolBoxWidget::ItemOf(QTreeWidgetItem* row, int column)
{
    if (!row)
        return nullptr;
    const QVariant data = row->data(column, Qt::UserRole);
    return data.isValid() ? static_cast<ATBItem*>(data.value<void*>()) : nullptr;
}

void ToolBoxWidget::UpdateItem(ATBItem* item)
{
    QTreeWidgetItem* old = nullptr;
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it)
        if (ItemOf(*it) == item) {
            old = *it;
            break;
        }
    if (!old)
        return; // not shown: nothing to rebuild
    QTreeWidgetItem* parent = old->parent() ? old->parent() : m_tree->invisibleRootItem();
    if (item->IsValid()) {
        QTreeWidgetItem* row = MakeRow(parent, item);
        // Only these kinds can change; any other row keeps no icon.
        const int type = item->GetType();
        if (hasChildren(type) || type == ATB_AlgoDepend)
            row->setIcon(0, QIcon(ATBItem::IconPath(type)));
        if (hasChildren(type))
            if (auto* container = dynamic_cast<ATBContainer*>(item))
                PopulateItems(row, container->GetChildren());
    }
    parent->removeChild(old);
    // Taken out of the tree, not freed: a slot may still be running on it.
    m_detachedRows.append(old);
    m_modified = true;
    emit Changed();
}

void ToolBoxWidget::CollectItems(QList<ATBItem*>& out)
{
    m_items.clear();
    CollectChildren(m_tree->invisibleRootItem(), m_items);
    out = m_items;
}

bool ToolBoxWidget::WriteItems(const std::function<bool(const QList<ATBItem*>&)>& write)
{
    const QList<ATBItem*> items = m_items;
    QHash<ATBContainer*, QList<ATBItem*>> children;
    for (ATBItem* item : qAsConst(m_known))
        if (auto* container = dynamic_cast<ATBContainer*>(item))
            children.insert(container, container->GetChildren());
    QList<ATBItem*> collected;
    CollectItems(collected);
    const bool written = write(collected);
    m_items = items;
    for (auto it = children.constBegin(); it != children.constEnd(); ++it)
        it.key()->GetChildren() = it.value();
    return written;
}

void ToolBoxWidget::CollectChildren(QTreeWidgetItem* row, QList<ATBItem*>& target)
{
    for (int i = 0; i < row->childCount(); ++i) {
        QTreeWidgetItem* child = row->child(i);
        if (!child->data(0, Qt::UserRole).isValid())
            continue;
        ATBItem* item = ItemOf(child);
        target.append(item);
        if (item && hasChildren(item->GetType()))
            if (auto* container = dynamic_cast<ATBContainer*>(item)) {
                container->GetChildren().clear();
                CollectChildren(child, container->GetChildren());
            }
    }
}

void ToolBoxWidget::OnItemClicked(QTreeWidgetItem* item, int)
{
    if (ATBItem* atb = ItemOf(item))
        atb->OnClicked();
}

void ToolBoxWidget::OnItemDoubleClicked(QTreeWidgetItem* item, int column)
{
    if (ATBItem* atb = ItemOf(item, column))
        atb->OnDoubleClicked();
}

void ToolBoxWidget::contextMenuEvent(QContextMenuEvent* event)
{
    // The current row, not the one under the pointer.
    QTreeWidgetItem* row = m_tree->currentItem();
    if (!row)
        return;
    if (ATBItem* item = ItemOf(row, m_tree->currentColumn()))
        item->OnContextMenu(event);
}

} // namespace Plugin
