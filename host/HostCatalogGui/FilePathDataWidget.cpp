#include "HostCatalogGui/FilePathDataWidget.h"

#include "HostCatalogGui/PathDialog.h"

#include <QLineEdit>

namespace Plugin {

FilePathDataWidget::FilePathDataWidget(const QString& typeParam, QWidget* parent)
    : LineEditDataWidget(BrowseButton, parent), m_param(DataTypeParam::Parse(typeParam))
{
}

void FilePathDataWidget::Browse()
{
    const QStringList paths = PathDialog::Ask(this, PathDialog::SaveFile, m_param.GetNameFilter(), GetValue());
    if (!paths.isEmpty())
        Edit()->setText(paths.first());
}

} // namespace Plugin
