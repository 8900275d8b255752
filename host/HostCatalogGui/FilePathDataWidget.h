#pragma once

#include "HostCatalogGui/DataTypeParam.h"
#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// The path of a file to write ("filePath"). "..." asks where to save, offering the
// files of the typeParam's "filter".
class FilePathDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    FilePathDataWidget(const QString& typeParam, QWidget* parent = nullptr);

protected:
    void Browse() override;

private:
    DataTypeParam m_param;
};

} // namespace Plugin
