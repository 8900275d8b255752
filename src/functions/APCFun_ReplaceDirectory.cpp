#include "functions/APCFun_ReplaceDirectory.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>

namespace Plugin {

APCFun_ReplaceDirectory::APCFun_ReplaceDirectory(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_ReplaceDirectory::Info()
{
    const QStringList lines = {
        QStringLiteral("$ReplaceDirectory(%newDir%, %fileName%)"),
        QCoreApplication::translate("APCFunFactory", "    The function is using another directory and the specified files to generate a new string, which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Another directory + the file name + the file extension"),
        QStringLiteral("$ReplaceDirectory('c:/test/result', 'c:/test/data/1/a.tif')"),
        QStringLiteral("return: 'c:/test/result/a.tif'"),
        QCoreApplication::translate("APCFunFactory", "Another directory :'c:/test'"),
        QCoreApplication::translate("APCFunFactory", "The file name :'a'"),
        QCoreApplication::translate("APCFunFactory", "The File extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/a.tif'"),
    };
    return {QStringLiteral("$ReplaceDirectory"), JoinHelp(lines), 2};
}

bool APCFun_ReplaceDirectory::IsValid() { return Params().size() == 2; }

QString APCFun_ReplaceDirectory::Evaluate()
{
    if (Params().size() != 2)
        return QString();
    QStringList parts;
    const QString dir = TargetDirectory(&parts);
    // A bare file name has no directory to replace.
    if (parts.size() < 2)
        return QString();
    return dir + parts.last();
}

} // namespace Plugin
