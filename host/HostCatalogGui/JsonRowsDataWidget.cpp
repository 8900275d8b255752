#include "HostCatalogGui/JsonRowsDataWidget.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

namespace Plugin {

namespace {

enum Page { RowsPage, TextPage };

bool parseObject(const QString& text, QJsonObject* object)
{
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject())
        return false;
    *object = doc.object();
    return true;
}

QToolButton* button(const QString& name, const QString& text, QWidget* parent)
{
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setText(text);
    b->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return b;
}

} // namespace

JsonRowsDataWidget::JsonRowsDataWidget(const QStringList& headers, const QString& addText, QWidget* parent)
    : DataTypeWidget(parent)
{
    m_pages = new QStackedWidget(this);

    auto* rowsPage = new QWidget(m_pages);
    auto* rowsLayout = new QHBoxLayout(rowsPage);
    rowsLayout->setContentsMargins(0, 0, 0, 0);
    rowsLayout->setSpacing(2);
    m_table = new QTableWidget(0, headers.size(), rowsPage);
    m_table->setObjectName(QStringLiteral("table"));
    m_table->setHorizontalHeaderLabels(headers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->verticalHeader()->hide();
    // Compact rows so that a line or two shows even in a small dialog.
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 8);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_table->setMinimumHeight(0);
    rowsLayout->addWidget(m_table, 1);
    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(2);
    QToolButton* add = button(QStringLiteral("add"), addText, rowsPage);
    QToolButton* remove = button(QStringLiteral("remove"), QCoreApplication::translate("JsonRowsDataWidget", "Remove"), rowsPage);
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch(1);
    rowsLayout->addLayout(buttons);
    m_pages->addWidget(rowsPage);

    auto* textPage = new QWidget(m_pages);
    auto* textLayout = new QVBoxLayout(textPage);
    textLayout->setContentsMargins(0, 0, 0, 0);
    textLayout->setSpacing(2);
    auto* textLine = new QHBoxLayout;
    m_text = new QLineEdit(textPage);
    m_text->setObjectName(QStringLiteral("text"));
    m_text->setMaxLength(std::numeric_limits<int>::max());
    textLine->addWidget(m_text, 1);
    auto* useRows = new QPushButton(QCoreApplication::translate("JsonRowsDataWidget", "Replace with rows"), textPage);
    useRows->setObjectName(QStringLiteral("useRows"));
    textLine->addWidget(useRows);
    textLayout->addLayout(textLine);
    auto* note = new QLabel(QCoreApplication::translate("JsonRowsDataWidget", "Kept as it stands: this value is no list the table can show."), textPage);
    note->setWordWrap(true);
    textLayout->addWidget(note);
    textLayout->addStretch(1);
    m_pages->addWidget(textPage);

    SetBody(m_pages, m_table);

    connect(add, &QToolButton::clicked, this, [this] { AddRows(); });
    connect(remove, &QToolButton::clicked, this, [this] { RemoveSelectedRows(); });
    connect(m_table, &QTableWidget::itemChanged, this, [this] { MarkEdited(); });
    connect(m_text, &QLineEdit::textEdited, this, [this] { MarkEdited(); });
    connect(useRows, &QPushButton::clicked, this, [this] {
        // The user gives the text up; what of it parses becomes rows.
        ShowRowsOf(m_text->text());
        MarkEdited();
    });
}

QString JsonRowsDataWidget::GetValue()
{
    if (!m_edited)
        return m_verbatim;
    if (!ShowsRows())
        return m_text->text();
    QJsonObject object;
    for (int row = 0; row < m_table->rowCount(); ++row)
        WriteRow(row, &object);
    // No rows means nothing set, not an empty object.
    if (object.isEmpty())
        return QString();
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

void JsonRowsDataWidget::SetValue(const QString& value)
{
    m_verbatim = value;
    QJsonObject object;
    if (value.isEmpty() || parseObject(value, &object))
        ShowRowsOf(value);
    else
        ShowText(value);
    m_edited = false;
}

bool JsonRowsDataWidget::ShowsRows() const
{
    return m_pages->currentIndex() == RowsPage;
}

QTableWidgetItem* JsonRowsDataWidget::TextItem(const QString& text)
{
    return new QTableWidgetItem(text);
}

void JsonRowsDataWidget::ShowRowsOf(const QString& text)
{
    const QSignalBlocker blocker(m_table); // filling is no user edit
    m_table->setRowCount(0);
    QJsonObject object;
    if (parseObject(text, &object)) {
        for (const QString& key : object.keys())
            AppendRow(object, key);
    }
    m_text->clear();
    m_pages->setCurrentIndex(RowsPage);
    SetFocusTarget(m_table);
}

void JsonRowsDataWidget::ShowText(const QString& text)
{
    {
        const QSignalBlocker blocker(m_table);
        m_table->setRowCount(0);
    }
    m_text->setText(text);
    m_text->setCursorPosition(0);
    m_pages->setCurrentIndex(TextPage);
    SetFocusTarget(m_text);
}

void JsonRowsDataWidget::RemoveSelectedRows()
{
    QList<int> rows;
    for (const QModelIndex& index : m_table->selectionModel()->selectedRows())
        rows << index.row();
    if (rows.isEmpty() && m_table->currentRow() >= 0)
        rows << m_table->currentRow();
    if (rows.isEmpty())
        return;
    std::sort(rows.begin(), rows.end(), std::greater<int>());
    for (int row : rows)
        m_table->removeRow(row);
    MarkEdited();
}

} // namespace Plugin
