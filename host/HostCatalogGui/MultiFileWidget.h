#pragma once

#include "HostCatalogGui/DataTypeParam.h"
#include "HostCatalogGui/LineEditDataWidget.h"

namespace Plugin {

// Several files to read ("multiFile"), as one text of paths separated by ';' (the
// form the algorithms split). "..." adds the chosen files to those already listed,
// so a list can gather files from several folders; the typeParam's "filter" names
// the files offered.
class MultiFileWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    MultiFileWidget(const QString& typeParam, QWidget* parent = nullptr);

protected:
    void Browse() override;

private:
    DataTypeParam m_param;
};

} // namespace Plugin
