#pragma once

#include "HostCatalogGui/JsonRowsDataWidget.h"

namespace Plugin {

// A file iterator's filter ("filter"): one row per output with the output's name and
// its patterns separated by ';'. The value is a JSON object with one member per
// output, {"Out File":"*.tif;*.tiff"}.
class FilterDataWidget : public JsonRowsDataWidget
{
    Q_OBJECT

public:
    explicit FilterDataWidget(QWidget* parent = nullptr);

protected:
    void AppendRow(const QJsonObject& object, const QString& key) override;
    void WriteRow(int row, QJsonObject* object) const override;
    void AddRows() override;

private:
    void AppendOutput(const QString& name, const QString& patterns);
};

} // namespace Plugin
