#include "HostCatalogGui/MultiFileWidget.h"

#include "HostCatalogGui/PathDialog.h"

#include <QLineEdit>

namespace Plugin {

namespace {

const QChar kSeparator = QLatin1Char(';');

} // namespace

MultiFileWidget::MultiFileWidget(const QString& typeParam, QWidget* parent)
    : LineEditDataWidget(BrowseButton, parent), m_param(DataTypeParam::Parse(typeParam))
{
}

void MultiFileWidget::Browse()
{
    QStringList paths;
    for (const QString& part : GetValue().split(kSeparator)) {
        if (!part.trimmed().isEmpty())
            paths << part.trimmed();
    }
    // Start where the last listed file lies: that is where the user was.
    const QStringList chosen = PathDialog::Ask(this, PathDialog::OpenFiles, m_param.GetNameFilter(),
                                               paths.isEmpty() ? QString() : paths.last());
    if (chosen.isEmpty())
        return;
    for (const QString& path : chosen) {
        if (!paths.contains(path))
            paths << path;
    }
    Edit()->setText(paths.join(kSeparator));
}

} // namespace Plugin
