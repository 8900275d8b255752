#include "functions/APCFun_ReplaceExtension.h"

#include "functions/FunctionInfo.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace Plugin {

APCFun_ReplaceExtension::APCFun_ReplaceExtension(const QString& text) : APCFun(text) {}

FunctionInfo APCFun_ReplaceExtension::Info()
{
    const QStringList lines = {
        QStringLiteral("$ReplaceExtension(%filePath%, 'extension')"),
        QCoreApplication::translate("APCFunFactory", "    The function is replacing the input file's extension with the specified string to generate a new string, which is used as the function return value."),
        QCoreApplication::translate("APCFunFactory", "The format of string is: "),
        QCoreApplication::translate("APCFunFactory", "    Path + the file name + the new extension"),
        QStringLiteral("$ReplaceExtension('c:/test/x.tif', 'xml')"),
        QStringLiteral("return: 'c:/test/x.xml'"),
        QCoreApplication::translate("APCFunFactory", "Path :'c:/test'"),
        QCoreApplication::translate("APCFunFactory", "The file name :'x'"),
        QCoreApplication::translate("APCFunFactory", "The new extension :'.xml'"),
        QCoreApplication::translate("APCFunFactory", "The return result of the Function :'c:/test/x.xml'"),
    };
    return {QStringLiteral("$ReplaceExtension"), JoinHelp(lines), 2};
}

bool APCFun_ReplaceExtension::IsValid() { return Params().size() == 2; }

QString APCFun_ReplaceExtension::Evaluate()
{
    if (Params().size() != 2)
        return QString();
    const QString path = Arg(0);
    const QString extension = Arg(1);
    // The dot stays; without an extension the text is appended bare.
    const int e = QFileInfo(path).suffix().size();
    return path.left(path.size() - e) + extension;
}

} // namespace Plugin
