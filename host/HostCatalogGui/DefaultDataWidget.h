#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// The editor of a data type the host has no widget for: the value as plain text.
class DefaultDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit DefaultDataWidget(QWidget* parent = nullptr);
};

} // namespace Plugin
