#include "support/CanvasDriver.h"

#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBItem.h"
#include "toolbox/ATBTreeWidget.h"

#include <QApplication>
#include <QGraphicsItem>
#include <QGraphicsSceneDragDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>

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

bool DropAlgo(Plugin::ModelControler& window, const QString& name, const QString& algorithm, const QPointF& at)
{
    Plugin::ATBTreeWidget tree;
    Plugin::ATBAlgo algo;
    algo.SetName(name);
    algo.SetMetadata(algorithm);
    return DropOnCanvas(&tree, &algo, window, at);
}

std::unique_ptr<Plugin::ModelControler> OpenShown(const QString& path, bool readOnly, int width, int height)
{
    auto window = std::make_unique<Plugin::ModelControler>(path, readOnly);
    window->resize(width, height);
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    return window;
}

QWidget* Mouse::Viewport() const
{
    return m_window->GetView()->viewport();
}

QPoint Mouse::At(const QPointF& scenePos) const
{
    return m_window->GetView()->mapFromScene(scenePos);
}

QPoint Mouse::At(const QString& id) const
{
    auto* item = dynamic_cast<QGraphicsItem*>(m_window->FindItemBaseById(id));
    EXPECT_NE(item, nullptr) << id.toStdString();
    return item ? At(item->pos()) : QPoint();
}

QPoint Mouse::At(Plugin::APCObject* object) const
{
    return At(m_window->FindItem(object)->sceneBoundingRect().center());
}

void Mouse::Move(const QPoint& to, Qt::MouseButtons buttons) const
{
    QMouseEvent event(QEvent::MouseMove, to, Viewport()->mapToGlobal(to), Qt::NoButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(Viewport(), &event);
}

void Mouse::Press(const QPoint& at, Qt::MouseButton button) const
{
    QTest::mousePress(Viewport(), button, {}, at);
}

void Mouse::Release(const QPoint& at, Qt::MouseButton button) const
{
    QTest::mouseRelease(Viewport(), button, {}, at);
}

void Mouse::DoubleClick(const QPoint& at) const
{
    Move(at);
    QTest::mouseDClick(Viewport(), Qt::LeftButton, {}, at);
}

void Mouse::Drag(const QPoint& from, const QPoint& to) const
{
    Move(from);
    Press(from);
    for (int i = 1; i <= 3; ++i)
        Move(from + (to - from) * i / 3, Qt::LeftButton);
    Release(to);
}

} // namespace CanvasDriver
