#pragma once

#include <QGraphicsView>

namespace Plugin {

class ModelScene;

// Shows a model's scene and tells it when the pointer enters and leaves.
class ModelView : public QGraphicsView
{
public:
    ModelView(ModelScene* scene, QWidget* parent);

protected:
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    ModelScene* m_scene; // not owned
};

} // namespace Plugin
