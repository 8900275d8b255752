// Pictures of a whole model: the Print command writes them as SVG, PNG or PDF.
#include "editor/ModelPicture.h"

#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/PrintCommand.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsItem>
#include <QGuiApplication>
#include <QImage>
#include <QDir>
#include <QMessageBox>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QScreen>
#include <QSvgGenerator>

#include <cmath>

namespace Plugin {

namespace {

constexpr double kMargin = 20;
// PNG pixels per scene unit, fewer for a model too large for memory.
constexpr double kPngScale = 2;
constexpr double kPngMaxPixels = 64e6;
constexpr int kPngMaxSide = 32000;

// Text is laid out for this resolution, so that labels are cut where the canvas
// cuts them.
int ScreenDpi()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? qRound(screen->logicalDotsPerInchY()) : 96;
}

QRectF CanvasExtent(ModelScene* scene)
{
    QRectF extent;
    for (QGraphicsItem* item : scene->GetItems())
        if (item->scene() == scene && item->isVisible())
            extent |= item->sceneBoundingRect();
    if (extent.isEmpty())
        extent = QRectF(0, 0, 100, 100);
    return extent.adjusted(-kMargin, -kMargin, kMargin, kMargin);
}

void Prepare(QPainter& painter)
{
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
}

bool WriteSvg(ModelScene* scene, const QRectF& source, QIODevice* file)
{
    QSvgGenerator svg;
    svg.setOutputDevice(file);
    svg.setResolution(ScreenDpi());
    svg.setSize(source.size().toSize());
    svg.setViewBox(QRectF(QPointF(0, 0), source.size()));
    svg.setTitle(QCoreApplication::translate("PrintCommand", "Model"));
    QPainter painter;
    if (!painter.begin(&svg))
        return false;
    Prepare(painter);
    scene->render(&painter, QRectF(QPointF(0, 0), source.size()), source);
    return painter.end();
}

bool WritePng(ModelScene* scene, const QRectF& source, QIODevice* file)
{
    double scale = std::min(kPngScale, std::sqrt(kPngMaxPixels / (source.width() * source.height())));
    scale = std::min(scale, kPngMaxSide / std::max(source.width(), source.height()));
    QImage image((source.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return false;
    image.fill(Qt::white);
    QPainter painter;
    if (!painter.begin(&image))
        return false;
    Prepare(painter);
    scene->render(&painter, QRectF(image.rect()), source);
    painter.end();
    return image.save(file, "PNG");
}

bool WritePdf(ModelScene* scene, const QRectF& source, QIODevice* file)
{
    QPdfWriter pdf(file);
    const int dpi = ScreenDpi();
    // One scene unit to one device pixel, so that text keeps its size beside the shapes.
    pdf.setResolution(dpi);
    pdf.setPageSize(QPageSize(source.size() * 72.0 / dpi, QPageSize::Point, QString(), QPageSize::ExactMatch));
    pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
    pdf.setTitle(QCoreApplication::translate("PrintCommand", "Model"));
    pdf.setCreator(QCoreApplication::translate("ModelControler", "Model Builder"));
    QPainter painter;
    if (!painter.begin(&pdf))
        return false;
    Prepare(painter);
    scene->render(&painter, QRectF(0, 0, pdf.width(), pdf.height()), source);
    return painter.end();
}

} // namespace

QString PictureFormatOf(const QString& path, const QString& filter)
{
    const QStringList formats = {QStringLiteral("svg"), QStringLiteral("png"), QStringLiteral("pdf")};
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (formats.contains(suffix))
        return suffix;
    for (const QString& format : formats)
        if (filter.contains(QStringLiteral("*.") + format, Qt::CaseInsensitive))
            return format;
    return formats.first();
}

bool WriteModelPicture(ModelScene* scene, const QString& path, const QString& format, QString* error)
{
    const QRectF source = CanvasExtent(scene);
    // Handles and Qt's outline of a selected item are no part of the model.
    const QList<QGraphicsItem*> selected = scene->selectedItems();
    for (QGraphicsItem* item : selected)
        item->setSelected(false);

    const GraphicsItemBase::WholeLabels wholeLabels;
    QSaveFile file(path);
    bool written = file.open(QIODevice::WriteOnly);
    if (written) {
        if (format == QLatin1String("png"))
            written = WritePng(scene, source, &file);
        else if (format == QLatin1String("pdf"))
            written = WritePdf(scene, source, &file);
        else
            written = WriteSvg(scene, source, &file);
        written = written && file.commit();
    }
    if (!written && error)
        *error = file.error() != QFileDevice::NoError
                     ? file.errorString()
                     : QCoreApplication::translate("PrintCommand", "The picture could not be drawn.");

    for (QGraphicsItem* item : selected)
        item->setSelected(true);
    return written;
}

void PrintCommand::OnClick()
{
    QString filter;
    QString path = QFileDialog::getSaveFileName(
        m_controler, QCoreApplication::translate("PrintCommand", "Export Picture"), QString(),
        QCoreApplication::translate("PrintCommand", "SVG picture (*.svg);;PNG picture (*.png);;PDF document (*.pdf)"),
        &filter);
    if (path.isEmpty())
        return;
    const QString format = PictureFormatOf(path, filter);
    if (QFileInfo(path).suffix().toLower() != format)
        path += QLatin1Char('.') + format;
    QString error;
    if (!WriteModelPicture(m_controler->GetScene(), path, format, &error))
        QMessageBox::warning(m_controler, QCoreApplication::translate("PrintCommand", "Export Picture"),
                             QCoreApplication::translate("PrintCommand", "Could not write %1:\n%2")
                                 .arg(QDir::toNativeSeparators(path), error));
}

} // namespace Plugin
