#include "HostCatalogGui/PathDialog.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

namespace Plugin {

namespace {

QString title(PathDialog::Mode mode)
{
    switch (mode) {
    case PathDialog::OpenFile: return QCoreApplication::translate("PathDialog", "Open file");
    case PathDialog::OpenFiles: return QCoreApplication::translate("PathDialog", "Open files");
    case PathDialog::SaveFile: return QCoreApplication::translate("PathDialog", "Save file as");
    case PathDialog::Folder: return QCoreApplication::translate("PathDialog", "Select folder");
    }
    return {};
}

// "GeoTIFF (*.tif *.tiff)" gives "tif", so a name typed without extension gets the
// format the user picked; "All files (*)" gives none.
QString suffixOf(const QString& filter)
{
    static const QRegularExpression pattern(QStringLiteral("\\*\\.([A-Za-z0-9_]+)"));
    return pattern.match(filter).captured(1);
}

} // namespace

QStringList PathDialog::Ask(QWidget* parent, Mode mode, const QString& nameFilter, const QString& current)
{
    QFileDialog dialog(parent, title(mode));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    switch (mode) {
    case OpenFile: dialog.setFileMode(QFileDialog::ExistingFile); break;
    case OpenFiles: dialog.setFileMode(QFileDialog::ExistingFiles); break;
    case SaveFile:
        dialog.setFileMode(QFileDialog::AnyFile);
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        break;
    case Folder:
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
        break;
    }
    if (mode != Folder && !nameFilter.isEmpty()) {
        dialog.setNameFilter(nameFilter);
        if (mode == SaveFile) {
            dialog.setDefaultSuffix(suffixOf(dialog.selectedNameFilter()));
            QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                             [&dialog](const QString& filter) { dialog.setDefaultSuffix(suffixOf(filter)); });
        }
    }
    if (!current.isEmpty()) {
        const QFileInfo info(current);
        if (info.isDir()) {
            dialog.setDirectory(info.absoluteFilePath());
        } else {
            dialog.setDirectory(info.absolutePath());
            if (mode != Folder)
                dialog.selectFile(info.fileName());
        }
    }
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.selectedFiles();
}

} // namespace Plugin
