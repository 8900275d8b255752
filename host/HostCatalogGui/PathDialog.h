#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace Plugin {

// The file and folder pickers of the browse buttons, in one place so that every
// widget asks alike. Qt's own dialog is used, so it looks and behaves the same on
// every platform and under test.
class PathDialog
{
public:
    enum Mode { OpenFile, OpenFiles, SaveFile, Folder };

    // Runs a modal dialog starting at current (a file or folder path, may be empty)
    // with nameFilter in Qt's ";;" form (ignored for folders). Returns the chosen
    // paths, empty when the user cancels.
    static QStringList Ask(QWidget* parent, Mode mode, const QString& nameFilter, const QString& current);
};

} // namespace Plugin
