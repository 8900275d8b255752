#pragma once

#include "HostCatalogGui/DataTypeWidget.h"

#include <QJsonObject>

class QLineEdit;
class QStackedWidget;
class QTableWidget;
class QTableWidgetItem;

namespace Plugin {

// A value that is a JSON object text edited as a table, one member a row, keys in
// the sorted order in which readers of the object see them. Until the user edits,
// GetValue gives back the text of SetValue verbatim. A text that is no JSON object (a
// var reference, say) cannot be rows: it is kept as it stands in a line of its own,
// until the user chooses to replace it with rows.
class JsonRowsDataWidget : public DataTypeWidget
{
    Q_OBJECT

public:
    QString GetValue() override;
    void SetValue(const QString& value) override;

    // True while the value is shown as rows rather than kept as text.
    bool ShowsRows() const;

protected:
    JsonRowsDataWidget(const QStringList& headers, const QString& addText, QWidget* parent);

    QTableWidget* Table() const { return m_table; }
    // Appends a row for the member key of object.
    virtual void AppendRow(const QJsonObject& object, const QString& key) = 0;
    // Adds row's member to object; a row without a key adds nothing.
    virtual void WriteRow(int row, QJsonObject* object) const = 0;
    // The add button was clicked: add rows as the user asks, then MarkEdited.
    virtual void AddRows() = 0;
    // Call after every change the user makes, so GetValue writes the rows.
    void MarkEdited() { m_edited = true; }
    // A plain editable text cell.
    static QTableWidgetItem* TextItem(const QString& text);

private:
    void ShowRowsOf(const QString& text);
    void ShowText(const QString& text);
    void RemoveSelectedRows();

    QStackedWidget* m_pages = nullptr; // child
    QTableWidget* m_table = nullptr;   // child
    QLineEdit* m_text = nullptr;       // child
    QString m_verbatim;
    bool m_edited = false;
};

} // namespace Plugin
