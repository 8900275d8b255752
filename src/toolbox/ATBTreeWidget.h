#pragma once

#include <QPoint>
#include <QTreeWidget>

namespace Plugin {

// The tool box tree: a row dragged out of it carries its item to a model.
class ATBTreeWidget : public QTreeWidget
{
    Q_OBJECT
public:
    explicit ATBTreeWidget(QWidget* parent = nullptr) : QTreeWidget(parent) {}

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void StartDrag(const QPoint& position);

    QPoint m_dragStart; // where the left button was last pressed
};

} // namespace Plugin
