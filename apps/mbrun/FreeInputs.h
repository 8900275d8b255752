#pragma once

#include "model/FreeVars.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace Plugin {
class APCModel;
class APCVar;
} // namespace Plugin

namespace Mbrun {

// The model's free inputs and the values the command line gives them.
class FreeInputs
{
public:
    explicit FreeInputs(const Plugin::APCModel& model);

    // Gives each NAME=VALUE to the free input whose description or id is NAME.
    // Returns one line per problem: a name no input has, a value its input
    // cannot take; nothing when all went well.
    QStringList Apply(const QList<QPair<QString, QString>>& settings);
    // "Please set value: ..." for every input still without a value (unless the
    // value given was refused, which Apply already said).
    QStringList Missing() const;
    // The --list table: a header, then id, description and type of each input.
    QString Table() const;
    bool IsEmpty() const { return m_vars.IsEmpty(); }
    // The inputs with their values (clones, owned here).
    const QList<Plugin::APCVar*>& List() const { return m_vars.List(); }
    // description -> value, for the report.
    QList<QPair<QString, QString>> Values() const;

    // The text a several-folders input keeps: a JSON object stays as it is, and
    // folders separated by ';' become one, each read without its subfolders.
    // False with error set for a text that starts like JSON and is not.
    static bool MultiDirectoryValue(const QString& text, QString* value, QString* error);
    // The enabled folders of a several-folders value that do not exist.
    static QStringList MissingFolders(const QString& value);

private:
    Plugin::FreeVars m_vars;
    QStringList m_refused; // ids of inputs whose given value was refused
};

} // namespace Mbrun
