#pragma once

#include "HostCatalogGui/LineEditDataWidget.h"

class QLabel;

namespace Plugin {

// A spatial reference ("spatialReference"): an EPSG code (EPSG:4326, or the bare
// 4326 the runner also takes), WKT or a PROJ string, checked with GDAL as the user
// types. Below the line the widget names the reference it recognises, or says in red
// that GDAL does not know it. GetValue gives the text in either case: the check
// informs, it does not decide, so a reference a newer GDAL knows, or a var
// reference, is never lost.
class SpatialReferenceDataWidget : public LineEditDataWidget
{
    Q_OBJECT

public:
    explicit SpatialReferenceDataWidget(QWidget* parent = nullptr);

    // Whether GDAL takes the current text; an empty text counts as acceptable.
    bool IsAcceptable() const { return m_acceptable; }

private:
    void Check(const QString& text);

    QLabel* m_message = nullptr; // child
    bool m_acceptable = true;
};

} // namespace Plugin
