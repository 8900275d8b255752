#pragma once

#include "HostCatalogGui/JsonRowsDataWidget.h"

namespace Plugin {

// The folders a file iterator scans ("multiDirectory"): one row per folder with
// "include subfolders" and "enabled" check boxes. The value is a JSON object with
// one member per folder, {"/data/scenes":{"subdir":"0","enabled":"1"}}; a flag is
// on exactly for the text "1", as the iterator reads it. "Add..." picks a folder.
class MultiDirectoryDataWidget : public JsonRowsDataWidget
{
    Q_OBJECT

public:
    explicit MultiDirectoryDataWidget(QWidget* parent = nullptr);

protected:
    void AppendRow(const QJsonObject& object, const QString& key) override;
    void WriteRow(int row, QJsonObject* object) const override;
    void AddRows() override;

private:
    void AppendFolder(const QString& path, const QJsonObject& settings, bool subdir, bool enabled);
    bool IsChecked(int row, int column) const;
};

} // namespace Plugin
