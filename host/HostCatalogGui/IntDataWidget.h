#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// A 32-bit integer ("int"); keystrokes that cannot make one are refused.
class IntDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit IntDataWidget(QWidget* parent = nullptr);
};

} // namespace Plugin
