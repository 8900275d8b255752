#include "HostCatalogGui/FileDataWidget.h"

#include "HostCatalogGui/PathDialog.h"

#include <QLineEdit>

namespace Plugin {

FileDataWidget::FileDataWidget(const QString& typeParam, QWidget* parent)
    : LineEditDataWidget(BrowseButton, parent), m_param(DataTypeParam::Parse(typeParam))
{
}

void FileDataWidget::Browse()
{
    const PathDialog::Mode mode = m_param.IsOutput() ? PathDialog::SaveFile : PathDialog::OpenFile;
    const QStringList paths = PathDialog::Ask(this, mode, m_param.GetNameFilter(), GetValue());
    if (!paths.isEmpty())
        Edit()->setText(paths.first());
}

} // namespace Plugin
