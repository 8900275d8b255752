#include "HostCatalogGui/LongDataWidget.h"

#include "HostCatalogGui/NumberValidator.h"

#include <QLineEdit>

namespace Plugin {

LongDataWidget::LongDataWidget(QWidget* parent) : LineEditDataWidget(NoButton, parent)
{
    Edit()->setValidator(new NumberValidator(NumberValidator::Int64, this));
}

} // namespace Plugin
