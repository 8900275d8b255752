#include "HostCatalogGui/FolderDataWidget.h"

#include "HostCatalogGui/PathDialog.h"

#include <QLineEdit>

namespace Plugin {

FolderDataWidget::FolderDataWidget(QWidget* parent) : LineEditDataWidget(BrowseButton, parent) {}

void FolderDataWidget::Browse()
{
    const QStringList paths = PathDialog::Ask(this, PathDialog::Folder, QString(), GetValue());
    if (!paths.isEmpty())
        Edit()->setText(paths.first());
}

} // namespace Plugin
