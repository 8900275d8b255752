#include "HostCatalogGui/FilterDataWidget.h"

#include "HostCatalog/GetParamValue.h"

#include <QCoreApplication>
#include <QTableWidget>

namespace Plugin {

namespace {

enum Column { NameColumn, PatternsColumn };

const QString kFirstOutput = QStringLiteral("Out File");

} // namespace

FilterDataWidget::FilterDataWidget(QWidget* parent)
    : JsonRowsDataWidget({QCoreApplication::translate("FilterDataWidget", "Output"), QCoreApplication::translate("FilterDataWidget", "Patterns")}, QCoreApplication::translate("FilterDataWidget", "Add"), parent)
{
}

void FilterDataWidget::AppendRow(const QJsonObject& object, const QString& key)
{
    AppendOutput(key, GetParamValue(object, {key}));
}

void FilterDataWidget::WriteRow(int row, QJsonObject* object) const
{
    const QTableWidgetItem* name = Table()->item(row, NameColumn);
    const QTableWidgetItem* patterns = Table()->item(row, PatternsColumn);
    if (!name || name->text().isEmpty())
        return;
    object->insert(name->text(), patterns ? patterns->text() : QString());
}

void FilterDataWidget::AddRows()
{
    QTableWidget* table = Table();
    QStringList names;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (const QTableWidgetItem* item = table->item(row, NameColumn))
            names << item->text();
    }
    // Output names become parameter names and must differ: "Out File", "Out File 2"...
    QString name = kFirstOutput;
    for (int n = 2; names.contains(name); ++n)
        name = QStringLiteral("%1 %2").arg(kFirstOutput).arg(n);
    AppendOutput(name, QString());
    const int row = table->rowCount() - 1;
    table->setCurrentCell(row, PatternsColumn);
    table->editItem(table->item(row, PatternsColumn));
    MarkEdited();
}

void FilterDataWidget::AppendOutput(const QString& name, const QString& patterns)
{
    QTableWidget* table = Table();
    const bool blocked = table->blockSignals(true);
    const int row = table->rowCount();
    table->insertRow(row);
    QTableWidgetItem* nameItem = TextItem(name);
    nameItem->setToolTip(QCoreApplication::translate("FilterDataWidget", "Name of the output parameter that receives each file"));
    table->setItem(row, NameColumn, nameItem);
    QTableWidgetItem* patternItem = TextItem(patterns);
    patternItem->setToolTip(QCoreApplication::translate("FilterDataWidget", "Patterns separated by ';', e.g. *.tif;*.tiff"));
    table->setItem(row, PatternsColumn, patternItem);
    table->blockSignals(blocked);
}

} // namespace Plugin
