#include "HostCatalogGui/FloatDataWidget.h"

#include "HostCatalogGui/NumberValidator.h"

#include <QLineEdit>

namespace Plugin {

FloatDataWidget::FloatDataWidget(QWidget* parent) : LineEditDataWidget(NoButton, parent)
{
    Edit()->setValidator(new NumberValidator(NumberValidator::Real, this));
}

} // namespace Plugin
