#include "functions/APCFun_ReplaceSuffix.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>

namespace Plugin {

APCFun_ReplaceSuffix::APCFun_ReplaceSuffix(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_ReplaceSuffix::Info()
{
    const QStringList lines = {
        QStringLiteral("$ReplaceSuffix(%filePath%, '_before', '_after')"),
        QCoreApplication::translate("APCFunFactory", "    The function is replacing the specified old suffix of the input file with the specified new suffix to generate a new string, which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Path + the file name(removing the old suffix)the new suffix + the new extension"),
        QStringLiteral("$ReplaceSuffix('c:/test/n_abc.tif', '_abc', '_xyz')"),
        QStringLiteral("return: 'c:/test/n_xyz.tif'"),
        QCoreApplication::translate("APCFunFactory", "Path :'c:/test'"),
        QCoreApplication::translate("APCFunFactory", "The file name(exclude the old suffix) :'n'"),
        QCoreApplication::translate("APCFunFactory", "The new suffix :'_xyz'"),
        QCoreApplication::translate("APCFunFactory", "The new extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function:'c:/test/n_xyz.tif'"),
    };
    return {QStringLiteral("$ReplaceSuffix"), JoinHelp(lines), 3};
}

bool APCFun_ReplaceSuffix::IsValid() { return Params().size() == 3; }

QString APCFun_ReplaceSuffix::Evaluate()
{
    if (Params().size() != 3)
        return QString();
    QString path = Arg(0);
    const QString before = Arg(1);
    const QString after = Arg(2);
    // Over the whole path, directories included.
    return path.replace(before, after, Qt::CaseSensitive);
}

} // namespace Plugin
