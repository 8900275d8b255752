#pragma once

#include <QString>
#include <QStringList>

namespace Plugin {

class APCModel;
class APCVar;

// How a parameter value names a var, in one place. A value that begins with "%"
// is a reference; the id it names is the value with every "%" taken out.
bool IsVarReference(const QString& value);
QString ReferencedVarId(const QString& value);
// The reference to the var with that id: "%" + id + "%".
QString VarReferenceTo(const QString& id);
// The ids an expression names by "%...%" pairs, in order: each "%" opens a pair
// that the next one closes; an unclosed "%" ends the scan.
QStringList ReferencedIdsIn(const QString& expression);
// The var the value names in model; null when it is no reference, there is no
// model, or the model has no such var. Safe from pool threads.
APCVar* ReferencedVar(const APCModel* model, const QString& value);
// What a step sees for the value: a reference gives its var's run value (empty
// when the var is missing), anything else the value itself.
QString RunValueOf(const APCModel* model, const QString& value);

} // namespace Plugin
