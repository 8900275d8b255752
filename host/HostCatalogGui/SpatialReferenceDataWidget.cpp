#include "HostCatalogGui/SpatialReferenceDataWidget.h"
#include "HostRunner/SpatialReference.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>

#include <cpl_error.h>
#include <ogr_spatialref.h>

namespace Plugin {

namespace {

struct Verdict
{
    bool ok = false;
    QString name;   // the reference's own name when ok
    QString detail; // GDAL's reason when not
};

Verdict checkWithGdal(const QString& text)
{
    Verdict verdict;
    OGRSpatialReference srs;
    // Quiet: a rejected keystroke is no error for the log. The rule is the
    // runner's own, so the form accepts exactly what a step will.
    CPLPushErrorHandler(CPLQuietErrorHandler);
    CPLErrorReset();
    verdict.ok = HostRunner::ReadSpatialReference(text, &srs);
    verdict.detail = QString::fromUtf8(CPLGetLastErrorMsg());
    CPLPopErrorHandler();
    if (verdict.ok)
        verdict.name = QString::fromUtf8(srs.GetName());
    return verdict;
}

} // namespace

SpatialReferenceDataWidget::SpatialReferenceDataWidget(QWidget* parent) : LineEditDataWidget(NoButton, parent)
{
    Edit()->setPlaceholderText(QStringLiteral("EPSG:4326"));
    m_message = new QLabel(this);
    m_message->setObjectName(QStringLiteral("message"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->hide();
    AddBelow(m_message);
    connect(Edit(), &QLineEdit::textChanged, this, &SpatialReferenceDataWidget::Check);
}

void SpatialReferenceDataWidget::Check(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        m_acceptable = true;
        m_message->hide();
        return;
    }
    const Verdict verdict = checkWithGdal(trimmed);
    m_acceptable = verdict.ok;
    QPalette palette;
    if (verdict.ok) {
        m_message->setText(verdict.name);
        m_message->setToolTip(QString());
    } else {
        palette.setColor(QPalette::WindowText, QColor(0xc0, 0x00, 0x00));
        m_message->setText(QCoreApplication::translate("SpatialReferenceDataWidget", "Unknown spatial reference: enter an EPSG code such as EPSG:4326, or WKT."));
        m_message->setToolTip(verdict.detail);
    }
    m_message->setPalette(palette);
    m_message->setVisible(!m_message->text().isEmpty());
}

} // namespace Plugin
