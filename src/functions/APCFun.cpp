#include "functions/APCFun.h"

#include "functions/APCFunExpParam.h"
#include "functions/APCFunStringParam.h"
#include "functions/APCFunVarParam.h"
#include "functions/APCFun_AppendSuffix.h"
#include "functions/APCFun_ReplaceDirectory.h"
#include "functions/APCFun_ReplaceExtension.h"
#include "functions/APCFun_ReplaceSuffix.h"
#include "functions/APCFun_SelectDirectory.h"
#include "functions/APCFun_SelectDirectory2.h"
#include "functions/APCFun_SubDirectory.h"
#include "functions/APCFun_UnionFilePath.h"
#include "functions/FunctionInfo.h"

#include <memory>

namespace Plugin {

namespace {

template <class T>
APCFun* Make(const QString& text)
{
    return new T(text);
}

struct FunctionClass
{
    const char* name;
    APCFun* (*make)(const QString&);
};

// The names the language knows, exact and with case.
const FunctionClass kFunctionClasses[] = {
    {"SubDirectory", &Make<APCFun_SubDirectory>},
    {"AppendSuffix", &Make<APCFun_AppendSuffix>},
    {"ReplaceExtension", &Make<APCFun_ReplaceExtension>},
    {"ReplaceSuffix", &Make<APCFun_ReplaceSuffix>},
    {"ReplaceDirectory", &Make<APCFun_ReplaceDirectory>},
    {"SelectDirectory", &Make<APCFun_SelectDirectory>},
    {"SelectDirectory2", &Make<APCFun_SelectDirectory2>},
    {"UnionFilePath", &Make<APCFun_UnionFilePath>},
};

} // namespace

APCFun* APCFun::Create(const QString& text)
{
    const QString s = text.simplified();
    if (s.isEmpty())
        return nullptr;
    if (!s.startsWith(QLatin1Char('$')) || !s.endsWith(QLatin1Char(')'))
        || s.count(QLatin1Char('(')) != s.count(QLatin1Char(')')))
        return nullptr;

    const QString name = ParseFunctionName(s);
    std::unique_ptr<APCFun> fun;
    for (const FunctionClass& c : kFunctionClasses) {
        if (name == QLatin1String(c.name)) {
            fun.reset(c.make(s));
            break;
        }
    }
    if (!fun || !fun->IsValid())
        return nullptr;
    return fun.release();
}

QList<FunctionInfo> APCFun::GetFunctionList()
{
    return {
        APCFun_SubDirectory::Info(),
        APCFun_ReplaceExtension::Info(),
        APCFun_AppendSuffix::Info(),
        APCFun_ReplaceSuffix::Info(),
        APCFun_ReplaceDirectory::Info(),
        APCFun_SelectDirectory::Info(),
        APCFun_SelectDirectory2::Info(),
        APCFun_UnionFilePath::Info(),
    };
}

APCFun::APCFun(const QString& text) : m_text(text) { ParseParams(text); }

APCFun::~APCFun() { qDeleteAll(m_params); }

bool APCFun::IsValid() { return false; }

void APCFun::SetModel(APCModel* model)
{
    for (APCFunParam* param : qAsConst(m_params))
        param->SetModel(model);
}

QString APCFun::Evaluate() { return QString(); }

QString APCFun::Arg(int i) const { return m_params.at(i)->Evaluate(); }

QString APCFun::NormalisePath(const QString& path)
{
    QString normal = path;
    normal.replace(QStringLiteral("\\\\"), QStringLiteral("/"));
    return normal;
}

QStringList APCFun::SplitPath(const QString& path) { return path.split(QLatin1Char('/'), Qt::KeepEmptyParts); }

QString APCFun::TargetDirectory(QStringList* fileParts) const
{
    QString dir = NormalisePath(Arg(0));
    *fileParts = SplitPath(NormalisePath(Arg(1)));
    if (!dir.endsWith(QLatin1Char('/')))
        dir += QLatin1Char('/');
    return dir;
}

QString APCFun::JoinHelp(const QStringList& lines)
{
    QString help;
    for (int i = 0; i < lines.size(); ++i) {
        if (i > 0)
            help += i == 4 ? QStringLiteral("\r\n") : QStringLiteral("\n");
        help += lines.at(i);
    }
    return help;
}

QString APCFun::ParseFunctionName(const QString& text)
{
    const int dollar = text.indexOf(QLatin1Char('$'));
    const int paren = text.indexOf(QLatin1Char('('));
    if (dollar < 0 || paren <= dollar)
        return QString();
    return text.mid(dollar + 1, paren - dollar - 1);
}

QStringList APCFun::SplitArguments(const QString& text)
{
    // A plain scan: quotes protect nothing, so a comma or parenthesis inside a
    // literal counts like any other.
    const QString s = text.simplified();
    QStringList args;
    int depth = 0;
    int start = 0;
    for (int i = 0; i < s.size(); ++i) {
        const QChar c = s.at(i);
        if (c == QLatin1Char('(')) {
            if (++depth == 1)
                start = i;
        } else if (c == QLatin1Char(')')) {
            --depth;
        }
        // Behind the closing parenthesis every character cuts an empty argument,
        // which ends the classification there.
        if ((c == QLatin1Char(',') && depth == 1) || (depth == 0 && start != 0)) {
            args.append(s.mid(start + 1, i - start - 1).simplified());
            start = i;
        }
    }
    if (s.isEmpty() || depth != 0 || start != s.size() - 1)
        return QStringList();
    return args;
}

void APCFun::ParseParams(const QString& text)
{
    const QLatin1Char percent('%'), quote('\''), dollar('$'), close(')');
    for (const QString& arg : SplitArguments(text)) {
        if (arg.isEmpty())
            break;
        std::unique_ptr<APCFunParam> param;
        if (arg.startsWith(percent) && arg.endsWith(percent))
            param = std::make_unique<APCFunVarParam>(arg);
        else if (arg.startsWith(quote) && arg.endsWith(quote))
            param = std::make_unique<APCFunStringParam>(arg);
        else if (arg.startsWith(dollar) && arg.endsWith(close))
            param = std::make_unique<APCFunExpParam>(arg);
        else
            break;
        // What was parsed so far stays; the subclass's count test decides.
        if (!param->IsValid())
            break;
        m_params.append(param.release());
    }
}

} // namespace Plugin
