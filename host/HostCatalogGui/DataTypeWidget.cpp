#include "HostCatalogGui/DataTypeWidget.h"

#include <QLabel>
#include <QVBoxLayout>

namespace Plugin {

DataTypeWidget::DataTypeWidget(QWidget* parent) : QWidget(parent)
{
    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(2);
    m_caption = new QLabel(this);
    m_caption->setObjectName(QStringLiteral("caption"));
    // Descriptions are plain text; a '<' in one must not turn it into markup.
    m_caption->setTextFormat(Qt::PlainText);
    m_caption->setWordWrap(true);
    m_caption->hide();
    m_layout->addWidget(m_caption);
}

DataTypeWidget::~DataTypeWidget() = default;

void DataTypeWidget::SetCaption(const QString& caption)
{
    m_captionText = caption;
    // With a buddy, a label reads '&' as a mnemonic; descriptions mean the character.
    m_caption->setText(QString(caption).replace(QLatin1Char('&'), QLatin1String("&&")));
    m_caption->setVisible(!caption.isEmpty());
}

void DataTypeWidget::SetCaptionBold(bool bold)
{
    QFont font = m_caption->font();
    font.setBold(bold);
    m_caption->setFont(font);
}

QString DataTypeWidget::GetCaption() const
{
    return m_captionText;
}

void DataTypeWidget::SetBody(QWidget* body, QWidget* focusTarget)
{
    m_layout->addWidget(body, 1);
    SetFocusTarget(focusTarget);
}

void DataTypeWidget::SetFocusTarget(QWidget* focusTarget)
{
    m_caption->setBuddy(focusTarget);
    setFocusProxy(focusTarget);
}

} // namespace Plugin
