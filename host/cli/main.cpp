#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream(stdout) << "mbrun: runs a model file from the command line (coming soon)\n";
    return 2;
}
