#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// A free text value ("string").
class StringDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit StringDataWidget(QWidget* parent = nullptr);
};

} // namespace Plugin
