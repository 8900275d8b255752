#include "toolbox/ATBTreeWidget.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>

namespace Plugin {

void ATBTreeWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_dragStart = event->pos();
    QTreeView::mousePressEvent(event);
}

void ATBTreeWidget::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->buttons() & Qt::LeftButton) &&
        (event->pos() - m_dragStart).manhattanLength() >= QApplication::startDragDistance())
        StartDrag(event->pos());
    QTreeView::mouseMoveEvent(event);
}

void ATBTreeWidget::StartDrag(const QPoint& position)
{
    QTreeWidgetItem* row = itemAt(position);
    setCurrentItem(row);
    if (!row)
        return;
    // The item's address as decimal text: meaningful only inside this process,
    // where the model canvas turns it back into the item.
    auto* mime = new QMimeData;
    const quintptr item = quintptr(row->data(0, Qt::UserRole).value<void*>());
    mime->setText(QString::number(quint64(item), 10));
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    drag->exec(Qt::MoveAction);
}

} // namespace Plugin
