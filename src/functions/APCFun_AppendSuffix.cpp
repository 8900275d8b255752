#include "functions/APCFun_AppendSuffix.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace Plugin {

APCFun_AppendSuffix::APCFun_AppendSuffix(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_AppendSuffix::Info()
{
    // The last line quotes another function's example; the texts are kept as shipped.
    const QStringList lines = {
        QStringLiteral("$AppendSuffix(%filePath%, '_suffix')"),
        QCoreApplication::translate("APCFunFactory", "    The function is using the input files and the specified suffixes to generate a new string, which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Path + the file name + the suffix + the file extension"),
        QStringLiteral("$AppendSuffix('c:/test/x.tif', '_a')"),
        QStringLiteral("return: 'c:/test/x_a.tif'"),
        QCoreApplication::translate("APCFunFactory", "Path :'c:/test'"),
        QCoreApplication::translate("APCFunFactory", "The suffix :'_a'"),
        QCoreApplication::translate("APCFunFactory", "The File extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/a_b.tif'"),
    };
    return {QStringLiteral("$AppendSuffix"), JoinHelp(lines), 2};
}

bool APCFun_AppendSuffix::IsValid() { return Params().size() == 2; }

QString APCFun_AppendSuffix::Evaluate()
{
    if (Params().size() != 2)
        return QString();
    QString path = Arg(0);
    const QString suffix = Arg(1);
    // In front of the extension's dot; without an extension this lands before
    // the last character ("c:/test/x" gives "c:/test/_ax"), which models rely on.
    const int e = QFileInfo(path).suffix().size();
    return path.insert(path.size() - e - 1, suffix);
}

} // namespace Plugin
