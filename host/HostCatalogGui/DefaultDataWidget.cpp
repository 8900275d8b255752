#include "HostCatalogGui/DefaultDataWidget.h"

namespace Plugin {

DefaultDataWidget::DefaultDataWidget(QWidget* parent) : LineEditDataWidget(NoButton, parent) {}

} // namespace Plugin
