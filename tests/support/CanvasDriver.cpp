#include "support/CanvasDriver.h"

#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "toolbox/ATBItem.h"

#include <QApplication>
#include <QGraphicsSceneDragDropEvent>
#include <QMimeData>
#include <QTreeWidget>

namespace CanvasDriver {

bool DropOnCanvas(QTreeWidget* tree, Plugin::ATBItem* item, Plugin::ModelControler& window, const QPointF& at)
{
    auto* row = new QTreeWidgetItem(tree, QStringList(item->GetName()));
    row->setData(0, Qt::UserRole, QVariant::fromValue(static_cast<void*>(item)));
    QMimeData mime;
    mime.setText(QString::number(quint64(quintptr(item)), 10));
    for (QEvent::Type type : {QEvent::GraphicsSceneDragEnter, QEvent::GraphicsSceneDragMove, QEvent::GraphicsSceneDrop}) {
        QGraphicsSceneDragDropEvent event(type);
        event.setSource(tree);
        event.setMimeData(&mime);
        event.setScenePos(at);
        event.setPossibleActions(Qt::MoveAction);
        event.setProposedAction(Qt::MoveAction);
        event.setAccepted(false);
        QApplication::sendEvent(window.GetScene(), &event);
        if (type != QEvent::GraphicsSceneDrop && !event.isAccepted())
            return false;
    }
    return true;
}

} // namespace CanvasDriver
