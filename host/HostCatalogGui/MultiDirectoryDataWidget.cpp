#include "HostCatalogGui/MultiDirectoryDataWidget.h"

#include "HostCatalog/GetParamValue.h"
#include "HostCatalogGui/PathDialog.h"

#include <QCoreApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QTableWidget>

#include <algorithm>

namespace Plugin {

namespace {

enum Column { FolderColumn, SubdirColumn, EnabledColumn };

const QString kSubdir = QStringLiteral("subdir");
const QString kEnabled = QStringLiteral("enabled");

QString flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

MultiDirectoryDataWidget::MultiDirectoryDataWidget(QWidget* parent)
    : JsonRowsDataWidget({QCoreApplication::translate("MultiDirectoryDataWidget", "Folder"), QCoreApplication::translate("MultiDirectoryDataWidget", "Subfolders"), QCoreApplication::translate("MultiDirectoryDataWidget", "Enabled")}, QCoreApplication::translate("MultiDirectoryDataWidget", "Add..."), parent)
{
}

void MultiDirectoryDataWidget::AppendRow(const QJsonObject& object, const QString& key)
{
    // A member that is no object stands for a folder with both flags off, as the
    // iterator reads it; other members of the settings are kept.
    AppendFolder(key, object.value(key).toObject(), GetParamValue(object, {key, kSubdir}) == QLatin1String("1"),
                 GetParamValue(object, {key, kEnabled}) == QLatin1String("1"));
}

void MultiDirectoryDataWidget::WriteRow(int row, QJsonObject* object) const
{
    const QTableWidgetItem* folder = Table()->item(row, FolderColumn);
    if (!folder || folder->text().isEmpty())
        return;
    QJsonObject settings = folder->data(Qt::UserRole).toJsonObject();
    settings.insert(kSubdir, flag(IsChecked(row, SubdirColumn)));
    settings.insert(kEnabled, flag(IsChecked(row, EnabledColumn)));
    object->insert(folder->text(), settings);
}

void MultiDirectoryDataWidget::AddRows()
{
    QTableWidget* table = Table();
    const int current = table->currentRow();
    const QTableWidgetItem* currentFolder = current >= 0 ? table->item(current, FolderColumn) : nullptr;
    const QStringList chosen = PathDialog::Ask(this, PathDialog::Folder, QString(),
                                               currentFolder ? currentFolder->text() : QString());
    for (const QString& path : chosen) {
        // One member per folder: a folder already listed is shown, not added twice.
        const QList<QTableWidgetItem*> same = table->findItems(path, Qt::MatchExactly);
        auto listed = std::find_if(same.begin(), same.end(),
                                   [](const QTableWidgetItem* item) { return item->column() == FolderColumn; });
        if (listed != same.end()) {
            table->selectRow((*listed)->row());
            continue;
        }
        AppendFolder(path, QJsonObject(), false, true);
        table->selectRow(table->rowCount() - 1);
        MarkEdited();
    }
}

void MultiDirectoryDataWidget::AppendFolder(const QString& path, const QJsonObject& settings, bool subdir,
                                            bool enabled)
{
    QTableWidget* table = Table();
    const bool blocked = table->blockSignals(true);
    const int row = table->rowCount();
    table->insertRow(row);
    QTableWidgetItem* folder = TextItem(path);
    folder->setData(Qt::UserRole, settings);
    folder->setToolTip(path);
    table->setItem(row, FolderColumn, folder);
    const auto addCheck = [this, table, row](int column, bool on, const QString& tip) {
        auto* cell = new QWidget(table);
        auto* layout = new QHBoxLayout(cell);
        layout->setContentsMargins(0, 0, 0, 0);
        auto* box = new QCheckBox(cell);
        box->setChecked(on);
        box->setToolTip(tip);
        layout->addWidget(box, 0, Qt::AlignCenter);
        table->setCellWidget(row, column, cell);
        connect(box, &QCheckBox::toggled, this, [this] { MarkEdited(); });
    };
    addCheck(SubdirColumn, subdir, QCoreApplication::translate("MultiDirectoryDataWidget", "Also scan the folders inside this folder"));
    addCheck(EnabledColumn, enabled, QCoreApplication::translate("MultiDirectoryDataWidget", "Scan this folder; unchecked keeps it listed but skips it"));
    table->blockSignals(blocked);
}

bool MultiDirectoryDataWidget::IsChecked(int row, int column) const
{
    const QWidget* cell = Table()->cellWidget(row, column);
    const QCheckBox* box = cell ? cell->findChild<QCheckBox*>() : nullptr;
    return box && box->isChecked();
}

} // namespace Plugin
