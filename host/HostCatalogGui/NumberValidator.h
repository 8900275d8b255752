#pragma once

#include <QValidator>

namespace Plugin {

// Refuses keystrokes that cannot lead to a number of the kind. Numbers are written
// the way algorithms read them: '.' as the decimal point whatever the user's locale,
// no group separators, an optional sign and, for reals, an exponent.
class NumberValidator : public QValidator
{
public:
    enum Kind { Int32, Int64, Real };

    NumberValidator(Kind kind, QObject* parent);

    State validate(QString& input, int& pos) const override;

private:
    Kind m_kind;
};

} // namespace Plugin
