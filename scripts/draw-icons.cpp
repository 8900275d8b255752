// Draws the plug-in's icons into src/resources/res. Run once when an icon changes:
//   g++ -fPIC scripts/draw-icons.cpp -o /tmp/draw-icons $(pkg-config --cflags --libs Qt5Gui)
//   QT_QPA_PLATFORM=offscreen /tmp/draw-icons src/resources/res
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace {

QImage canvas()
{
    QImage image(32, 32, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

// A rounded tile with a short label: readable at 16 and 32 pixels.
QImage tile(const QColor& color, const QString& label, int pointSize = 11)
{
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(color.darker(150), 1.5));
    p.setBrush(color);
    p.drawRoundedRect(QRectF(2.5, 2.5, 27, 27), 5, 5);
    QFont font(QStringLiteral("DejaVu Sans"), pointSize, QFont::Bold);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 0, 32, 32), Qt::AlignCenter, label);
    return image;
}

QImage folder(const QColor& color)
{
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(color.darker(160), 1.5));
    p.setBrush(color.darker(110));
    p.drawRoundedRect(QRectF(3, 7, 12, 6), 2, 2);
    p.setBrush(color);
    p.drawRoundedRect(QRectF(3, 10, 26, 18), 3, 3);
    return image;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const QString dir = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral(".");
    auto save = [&](const QImage& image, const char* name) { image.save(dir + QLatin1Char('/') + QLatin1String(name)); };

    save(tile(QColor(0x2e, 0x7d, 0x32), QStringLiteral("A")), "ATB_Algo.ico");
    save(tile(QColor(0x15, 0x65, 0xc0), QStringLiteral("M")), "ATB_AlgoDepend.ico");
    save(folder(QColor(0xf9, 0xa8, 0x25)), "ATB_Folder.ico");
    save(folder(QColor(0x78, 0x90, 0x9c)), "ATB_Group.ico");
    save(tile(QColor(0x37, 0x47, 0x4f), QStringLiteral("Py"), 9), "ATB_Python.ico");

    const QColor file(0x45, 0x5a, 0x64), edit(0x6a, 0x1b, 0x9a), tool(0x00, 0x69, 0x5c), view(0x28, 0x35, 0x93),
        run(0x2e, 0x7d, 0x32);
    const struct { const char* name; QColor color; const char* label; int size; } pngs[] = {
        {"Model_Open.png", file, "O", 12}, {"Model_Save.png", file, "S", 12}, {"Model_Print.png", file, "P", 12},
        {"Model_Cut.png", edit, "✂", 14}, {"Model_Copy.png", edit, "C", 12}, {"Model_Paste.png", edit, "V", 12},
        {"Model_Delete.png", QColor(0xc6, 0x28, 0x28), "✕", 14}, {"Model_Undo.png", edit, "↶", 16},
        {"Model_Redo.png", edit, "↷", 16}, {"Model_Properties.png", edit, "i", 14}, {"Model_DataAdd.png", edit, "+", 16},
        {"Model_SelectTool.png", tool, "↖", 16}, {"Model_PanTool.png", tool, "✥", 16}, {"Model_ConnectTool.png", tool, "→", 16},
        {"Model_ZoomInTool.png", tool, "+", 16}, {"Model_ZoomOutTool.png", tool, "−", 16},
        {"Model_ZoomFixedZoomIn.png", view, "+", 14}, {"Model_ZoomFixedZoomOut.png", view, "−", 14},
        {"Model_ZoomToNativeResolution.png", view, "1:1", 7}, {"Model_FullExtent.png", view, "⤢", 15},
        {"Model_AutoLayout.png", view, "▦", 15}, {"Model_ValidateModel.png", run, "✓", 15},
        {"Model_RunModel.png", run, "▶", 14}, {"Model_PauseModel.png", QColor(0xef, 0x6c, 0x00), "❚❚", 9},
        {"Model_StopModel.png", QColor(0xc6, 0x28, 0x28), "■", 14},
    };
    for (const auto& p : pngs)
        save(tile(p.color, QString::fromUtf8(p.label), p.size), p.name);
    return 0;
}
