#include "HostCatalogGui/NumberValidator.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace Plugin {

namespace {

QValidator::State validateInteger(const QString& input, qint64 low, qint64 high)
{
    static const QRegularExpression shape(QStringLiteral("^[+-]?[0-9]*$"));
    if (!shape.match(input).hasMatch())
        return QValidator::Invalid;
    if (input.isEmpty() || input == QLatin1String("+") || input == QLatin1String("-"))
        return QValidator::Intermediate;
    bool ok = false;
    const qint64 value = input.toLongLong(&ok);
    // Out of range can only get worse with more digits: refuse the keystroke.
    return ok && value >= low && value <= high ? QValidator::Acceptable : QValidator::Invalid;
}

QValidator::State validateReal(const QString& input)
{
    static const QRegularExpression complete(
        QStringLiteral("^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?$"));
    static const QRegularExpression partial(QStringLiteral("^[+-]?[0-9]*\\.?[0-9]*([eE][+-]?[0-9]*)?$"));
    if (complete.match(input).hasMatch()) {
        bool ok = false;
        const double value = input.toDouble(&ok);
        return ok && std::isfinite(value) ? QValidator::Acceptable : QValidator::Invalid;
    }
    return partial.match(input).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
}

} // namespace

NumberValidator::NumberValidator(Kind kind, QObject* parent) : QValidator(parent), m_kind(kind) {}

QValidator::State NumberValidator::validate(QString& input, int&) const
{
    switch (m_kind) {
    case Int32:
        return validateInteger(input, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max());
    case Int64:
        return validateInteger(input, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
    case Real:
        return validateReal(input);
    }
    return Invalid;
}

} // namespace Plugin
