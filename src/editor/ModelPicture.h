#pragma once

#include <QString>

namespace Plugin {

class ModelScene;

// "svg", "png" or "pdf": the extension of path when it names one of them, else
// the one the file dialog's filter names (its pattern), else "svg".
QString PictureFormatOf(const QString& path, const QString& filter);

// Writes a picture of every item of the canvas, also those outside the view, with
// a margin, in format ("svg", "png" or "pdf"), whole or not at all. The selection
// is left out of the picture and restored; the model is not touched. False, with
// the reason in error, when the file could not be written.
bool WriteModelPicture(ModelScene* scene, const QString& path, const QString& format, QString* error);

} // namespace Plugin
