#include "HostCatalogGui/LineEditDataWidget.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

#include <limits>

namespace Plugin {

LineEditDataWidget::LineEditDataWidget(Button button, QWidget* parent) : DataTypeWidget(parent)
{
    auto* body = new QWidget(this);
    m_column = new QVBoxLayout(body);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(2);
    auto* line = new QHBoxLayout;
    line->setSpacing(2);
    m_column->addLayout(line);

    m_edit = new QLineEdit(body);
    m_edit->setObjectName(QStringLiteral("edit"));
    // The default limit of 32767 characters would cut long path lists.
    m_edit->setMaxLength(std::numeric_limits<int>::max());
    m_edit->setClearButtonEnabled(true);
    line->addWidget(m_edit, 1);

    if (button == BrowseButton) {
        m_browse = new QToolButton(body);
        m_browse->setObjectName(QStringLiteral("browse"));
        m_browse->setText(QStringLiteral("..."));
        m_browse->setToolTip(QCoreApplication::translate("LineEditDataWidget", "Browse"));
        line->addWidget(m_browse);
        connect(m_browse, &QToolButton::clicked, this, [this] { Browse(); });
    }
    SetBody(body, m_edit);
}

QString LineEditDataWidget::GetValue()
{
    return m_edit->text();
}

void LineEditDataWidget::SetValue(const QString& value)
{
    m_edit->setText(value);
    m_edit->setCursorPosition(0);
}

void LineEditDataWidget::SetReadOnly(bool readOnly)
{
    m_edit->setReadOnly(readOnly);
    m_edit->setClearButtonEnabled(!readOnly);
    if (m_browse)
        m_browse->setVisible(!readOnly);
}

void LineEditDataWidget::AddBelow(QWidget* widget)
{
    m_column->addWidget(widget);
}

} // namespace Plugin
