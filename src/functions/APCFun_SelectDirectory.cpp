#include "functions/APCFun_SelectDirectory.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>

namespace Plugin {

APCFun_SelectDirectory::APCFun_SelectDirectory(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_SelectDirectory::Info()
{
    const QStringList lines = {
        QStringLiteral("$SelectDirectory(%newDir%, %fileName%)"),
        QCoreApplication::translate("APCFunFactory", "    The function is replacing the parent directory of the input file with another directory to generate a new string, which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Another directory + the current directory of the input file+ the file name + the file extension"),
        QStringLiteral("$SelectDirectory('c:/test/result', 'c:/test/data/1/a.tif')"),
        QStringLiteral("return: 'c:/test/result/1/a.tif'"),
        QCoreApplication::translate("APCFunFactory", "Another directory :'c:/test/result'"),
        QCoreApplication::translate("APCFunFactory", "The current directory of the input file:'1'"),
        QCoreApplication::translate("APCFunFactory", "The file name :'a'"),
        QCoreApplication::translate("APCFunFactory", "The File extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/result/1/a.tif'"),
    };
    return {QStringLiteral("$SelectDirectory"), JoinHelp(lines), 2};
}

bool APCFun_SelectDirectory::IsValid() { return Params().size() == 2; }

QString APCFun_SelectDirectory::Evaluate()
{
    if (Params().size() != 2)
        return QString();
    QStringList parts;
    const QString dir = TargetDirectory(&parts);
    if (parts.size() < 2)
        return QString();
    return dir + parts.at(parts.size() - 2) + QLatin1Char('/') + parts.last();
}

} // namespace Plugin
