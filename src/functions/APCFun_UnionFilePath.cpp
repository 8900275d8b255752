#include "functions/APCFun_UnionFilePath.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace Plugin {

APCFun_UnionFilePath::APCFun_UnionFilePath(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_UnionFilePath::Info()
{
    // The catalogue name and the example on line 5 differ from the name the
    // language knows ("UnionFilePath"); the texts are kept as shipped.
    const QStringList lines = {
        QStringLiteral("$UnionFilePath(%filePath1%, %filePath2%, '_')"),
        QCoreApplication::translate("APCFunFactory", "    The function is to extract information from two strings consisting of the path and name of two input data in the same folder and generate a new string,which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Path + the same part of the file name + the separator + the file extension."),
        QStringLiteral("UnionFilePath('c:/test/a_b_x.tif', 'c:/test/a_b_y.tif', '_')"),
        QStringLiteral("return: 'c:/test/a_b.tif'"),
        QCoreApplication::translate("APCFunFactory", "Path :'c:/test'"),
        QCoreApplication::translate("APCFunFactory", "The same part of the file name:the character 'a' and 'b'"),
        QCoreApplication::translate("APCFunFactory", "The File extension :'.tif'"),
        QCoreApplication::translate("APCFunFactory", "The Separator :'_'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/a_b.tif'"),
    };
    return {QStringLiteral("$APCFun_UnionFilePath"), JoinHelp(lines), 3};
}

bool APCFun_UnionFilePath::IsValid() { return Params().size() == 3; }

QString APCFun_UnionFilePath::Evaluate()
{
    if (Params().size() != 3)
        return QString();
    const QString first = NormalisePath(Arg(0));
    const QString second = NormalisePath(Arg(1));
    const QString separator = Arg(2);
    const QStringList a = SplitPath(first);
    const QStringList b = SplitPath(second);
    if (a.size() != b.size() || a.first() != b.first())
        return first;
    // Level by level: equal levels stay, differing ones keep their common pieces.
    QStringList levels;
    for (int i = 0; i < a.size(); ++i) {
        const QStringList pieces = CommonParts(a.at(i).split(separator, Qt::KeepEmptyParts),
                                               b.at(i).split(separator, Qt::KeepEmptyParts));
        levels.append(pieces.join(separator));
    }
    QString result = levels.join(QLatin1Char('/'));
    if (QFileInfo(result).suffix().isEmpty())
        result += QLatin1Char('.') + QFileInfo(first).suffix();
    return result;
}

QStringList APCFun_UnionFilePath::CommonParts(const QStringList& x, const QStringList& y)
{
    QStringList common;
    for (const QString& piece : x) {
        if (y.contains(piece) && !common.contains(piece))
            common.append(piece);
    }
    if (common.isEmpty())
        common = x + y;
    return common;
}

} // namespace Plugin
