#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Model Builder"));
    window.resize(1024, 700);
    window.show();
    return app.exec();
}
