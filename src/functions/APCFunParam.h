#pragma once

#include <QString>

namespace Plugin {

class APCModel;

// One argument of a path function. This base is the argument of no known form:
// invalid, and empty when evaluated.
class APCFunParam
{
public:
    explicit APCFunParam(const QString& text);
    APCFunParam(const APCFunParam&) = delete;
    APCFunParam& operator=(const APCFunParam&) = delete;
    virtual ~APCFunParam();

    virtual bool IsValid();
    // Binds whatever the argument names to model's objects.
    virtual void SetModel(APCModel* model);
    // The argument's value; safe from several threads once bound.
    virtual QString Evaluate();

    // The argument text; for literals and var references without their delimiters.
    QString GetText() const { return m_text; }

protected:
    // Removes one delimiter at each end: the first character, then the last, each
    // only when it is the delimiter. A lone delimiter becomes the empty text.
    static QString StripDelimiters(QString text, QChar delimiter);

    QString m_text;
};

} // namespace Plugin
