#include "HostCatalogGui/IntDataWidget.h"

#include "HostCatalogGui/NumberValidator.h"

#include <QLineEdit>

namespace Plugin {

IntDataWidget::IntDataWidget(QWidget* parent) : LineEditDataWidget(NoButton, parent)
{
    Edit()->setValidator(new NumberValidator(NumberValidator::Int32, this));
}

} // namespace Plugin
