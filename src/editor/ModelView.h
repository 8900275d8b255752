#pragma once

#include <QGraphicsView>

namespace Plugin {

class ModelScene;

// Shows a model's scene and tells it when the pointer enters and leaves.
class ModelView : public QGraphicsView
{
public:
    ModelView(ModelScene* scene, QWidget* parent);

    // Sets the scale absolutely, keeping the scroll offset of the transform, and
    // the scene's record of it. Every zoom but the band zoom-in and the full
    // extent goes through here.
    void ApplyScale(double scale);

protected:
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    ModelScene* m_scene; // not owned
};

} // namespace Plugin
