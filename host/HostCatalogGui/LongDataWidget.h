#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// A 64-bit integer ("long"); keystrokes that cannot make one are refused.
class LongDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit LongDataWidget(QWidget* parent = nullptr);
};

} // namespace Plugin
