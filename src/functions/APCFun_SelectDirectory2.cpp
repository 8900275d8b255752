#include "functions/APCFun_SelectDirectory2.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>

namespace Plugin {

APCFun_SelectDirectory2::APCFun_SelectDirectory2(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_SelectDirectory2::Info()
{
    const QStringList lines = {
        QStringLiteral("$SelectDirectory2(%newDir%, %filePath%, %baseDir%)"),
        QCoreApplication::translate("APCFunFactory", "    The function is replacing the specified prefix portion of the input file with another directory to generate a new string, which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Another directory + the specified prefix + the file path (removing the specified prefix)+ the file name + the file extension"),
        QStringLiteral("$SelectDirectory2('c:/test/result', 'c:/test/data/1/2/3/a.tif', 'c:/test/data/1')"),
        QStringLiteral("return: 'c:/test/result/2/3/a.tif'"),
        QCoreApplication::translate("APCFunFactory", "Another directory :'c:/test/result'"),
        QCoreApplication::translate("APCFunFactory", "The specified prefix:'c:/test/data/1'"),
        QCoreApplication::translate("APCFunFactory", "The file path (removing the specified prefix):'2/3'"),
        QCoreApplication::translate("APCFunFactory", "The file name :'a'"),
        QCoreApplication::translate("APCFunFactory", "The File extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/result/2/3/a.tif'"),
    };
    return {QStringLiteral("$SelectDirectory2"), JoinHelp(lines), 3};
}

bool APCFun_SelectDirectory2::IsValid() { return Params().size() == 3; }

QString APCFun_SelectDirectory2::Evaluate()
{
    if (Params().size() != 3)
        return QString();
    QString dir = NormalisePath(Arg(0));
    QString file = NormalisePath(Arg(1));
    const QString base = NormalisePath(Arg(2));
    const QStringList parts = SplitPath(file);
    // Grow a prefix of the file part by part while the base holds it (anywhere,
    // not only at its start); at the first prefix it doesn't hold, the file
    // keeps the "/" in front of that part and what follows.
    QString prefix;
    for (int i = 0; i < parts.size(); ++i) {
        prefix += parts.at(i) + QLatin1Char('/');
        if (base.indexOf(prefix.left(prefix.size() - 1)) < 0) {
            const int k = prefix.size() >= 2 ? prefix.lastIndexOf(QLatin1Char('/'), prefix.size() - 2) : -1;
            if (k >= 0)
                file.remove(0, k);
            break;
        }
    }
    if (dir.startsWith(QLatin1Char('/')))
        dir.remove(0, 1);
    if (file.startsWith(QLatin1Char('/')))
        file.remove(0, 1);
    return dir + QLatin1Char('/') + file;
}

} // namespace Plugin
