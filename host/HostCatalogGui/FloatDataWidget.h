#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// A real number ("float") with '.' as decimal point; keystrokes that cannot make one are refused.
class FloatDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit FloatDataWidget(QWidget* parent = nullptr);
};

} // namespace Plugin
