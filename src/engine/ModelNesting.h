#pragma once

#include <QString>
#include <QStringList>

namespace Plugin {

// The models a model file runs through its nested model steps, followed file by
// file: what a run, its checks and the cluster export all need to know of them.
namespace ModelNesting {

// The file's canonical path, or its absolute one when it does not exist.
QString Canonical(const QString& path);
// The model file and every model file it runs nested, absolute, each once, in the
// order they are met.
QStringList Files(const QString& path);
// The chain of model files from path that comes back to a file already on it
// (chain holds the files above path), or empty when the nesting ends.
QStringList Cycle(const QString& path, QStringList chain = QStringList());

} // namespace ModelNesting

} // namespace Plugin
