#include "HostCatalogGui/StringDataWidget.h"

namespace Plugin {

StringDataWidget::StringDataWidget(QWidget* parent) : LineEditDataWidget(NoButton, parent) {}

} // namespace Plugin
