#pragma once

#include "HostCatalogGui/DataTypeParam.h"
#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// A file path ("file"). "..." opens a file to read, or asks where to save when the
// typeParam's "direction" is "1"; its "filter" names the files offered.
class FileDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    FileDataWidget(const QString& typeParam, QWidget* parent = nullptr);

protected:
    void Browse() override;

private:
    DataTypeParam m_param;
};

} // namespace Plugin
