#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// A folder path ("folder"); "..." picks an existing folder.
class FolderDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit FolderDataWidget(QWidget* parent = nullptr);

protected:
    void Browse() override;
};

} // namespace Plugin
