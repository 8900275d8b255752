#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Plugin {

class APCModel;
class APCFunParam;
struct FunctionInfo;

// A parsed path expression, e.g. $AppendSuffix(%id%, '_x'). Bound to a model's vars
// by SetModel, evaluated to a string. The subclasses are the path functions.
class APCFun
{
public:
    // Parses text; null when it is no valid expression. The caller owns the result.
    static APCFun* Create(const QString& text);
    // The catalogue of the path functions, built afresh on each call.
    static QList<FunctionInfo> GetFunctionList();

    // Parses the arguments of text into the parameters; a malformed list leaves
    // fewer parameters or none, and IsValid decides.
    explicit APCFun(const QString& text);
    APCFun(const APCFun&) = delete;
    APCFun& operator=(const APCFun&) = delete;
    virtual ~APCFun();

    virtual bool IsValid();
    // Binds var references to the vars of model; call again after adding vars.
    virtual void SetModel(APCModel* model);
    // The value; empty when the parameter count is wrong. Safe from several
    // threads once bound. Only $SubDirectory touches the disk.
    virtual QString Evaluate();

    QString GetText() const { return m_text; }
    // The parsed arguments in order, owned by this function.
    const QList<APCFunParam*>& Params() const { return m_params; }

protected:
    // The value of argument i; i must be below Params().size().
    QString Arg(int i) const;
    // Turns each pair of backslashes into "/"; single backslashes stay.
    static QString NormalisePath(const QString& path);
    // The parts between "/" separators, empty parts kept.
    static QStringList SplitPath(const QString& path);
    // For the directory functions: the new directory (argument 0, normalised, with a
    // trailing "/") and the parts of the file path (argument 1, normalised).
    QString TargetDirectory(QStringList* fileParts) const;
    // Joins catalogue help lines: line feeds, and a carriage return before the
    // line feed behind the fourth line.
    static QString JoinHelp(const QStringList& lines);

private:
    // The text between the first "$" and the first "(" behind it, or empty.
    static QString ParseFunctionName(const QString& text);
    // Cuts the argument list at its top-level commas; empty when the
    // parentheses don't close exactly at the end.
    static QStringList SplitArguments(const QString& text);
    void ParseParams(const QString& text);

    QString m_text;
    QList<APCFunParam*> m_params; // owned
};

} // namespace Plugin
