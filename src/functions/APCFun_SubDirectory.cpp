#include "functions/APCFun_SubDirectory.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Plugin {

APCFun_SubDirectory::APCFun_SubDirectory(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_SubDirectory::Info()
{
    // Line 3 has no blank behind the colon, unlike the other texts.
    const QStringList lines = {
        QStringLiteral("$SubDirectory(%filePath%, 'subName')"),
        QCoreApplication::translate("APCFunFactory", "    The function is used to add the subdirectory for the current path of the input file with the specified string, and to generate a new string based on the subdirectory and the file name,which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is:"),
        QCoreApplication::translate("APCFunFactory", "    Path + the subdirectory name+ the file name + the file extension"),
        QStringLiteral("$SubDirectory('c:/test/x.tif', 'tmp')"),
        QStringLiteral("return: 'c:/test/tmp/x.tif'"),
        QCoreApplication::translate("APCFunFactory", "Path :'c:/test'"),
        QCoreApplication::translate("APCFunFactory", "The subdirectory name:'tmp'"),
        QCoreApplication::translate("APCFunFactory", "The file name :'x'"),
        QCoreApplication::translate("APCFunFactory", "The File extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/tmp/x.tif'"),
    };
    return {QStringLiteral("$SubDirectory"), JoinHelp(lines), 2};
}

bool APCFun_SubDirectory::IsValid() { return Params().size() == 2; }

QString APCFun_SubDirectory::Evaluate()
{
    if (Params().size() != 2)
        return QString();
    const QString path = Arg(0);
    const QString name = Arg(1);
    const QFileInfo file(path);
    QDir dir = file.dir();
    const QString absolute = dir.absolutePath();
    // Made on each evaluation so that the step writing into it finds it; a
    // failure shows later, when the step cannot write.
    if (!name.isEmpty())
        dir.mkdir(name);
    QString result;
    if (absolute.contains(QLatin1Char('\\')))
        result = name.isEmpty() ? absolute + QLatin1Char('\\') : absolute + QLatin1Char('\\') + name + QLatin1Char('\\');
    if (absolute.contains(QLatin1Char('/')))
        result = name.isEmpty() ? absolute + QLatin1Char('/') : absolute + QLatin1Char('/') + name + QLatin1Char('/');
    return result + file.fileName();
}

} // namespace Plugin
