#pragma once

class QPointF;
class QTreeWidget;

namespace Plugin {
class ATBItem;
class ModelControler;
} // namespace Plugin

namespace CanvasDriver {

// Drags item's row out of tree and lets it go over the window's canvas at scene
// position at. The offscreen platform runs no real drag, so the scene gets the
// three events a view hands on during one (enter, move, drop), with the tree as
// source and the text the tool box puts in the drag. False when the canvas
// refused the drag, so that nothing was dropped.
bool DropOnCanvas(QTreeWidget* tree, Plugin::ATBItem* item, Plugin::ModelControler& window, const QPointF& at);

} // namespace CanvasDriver
