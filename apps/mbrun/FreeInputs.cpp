#include "FreeInputs.h"

#include "model/APCVar.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace Mbrun {

FreeInputs::FreeInputs(const Plugin::APCModel& model) : m_vars(model) {}

bool FreeInputs::MultiDirectoryValue(const QString& text, QString* value, QString* error)
{
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1Char('{'))) {
        QJsonParseError parse{};
        const QJsonDocument doc = QJsonDocument::fromJson(trimmed.toUtf8(), &parse);
        if (parse.error != QJsonParseError::NoError || !doc.isObject()) {
            *error = parse.error != QJsonParseError::NoError ? parse.errorString() : QStringLiteral("not an object");
            return false;
        }
        *value = text;
        return true;
    }
    QJsonObject folders;
    for (const QString& part : text.split(QLatin1Char(';'))) {
        const QString folder = part.trimmed();
        if (folder.isEmpty())
            continue;
        QJsonObject flags;
        flags.insert(QStringLiteral("subdir"), QStringLiteral("0"));
        flags.insert(QStringLiteral("enabled"), QStringLiteral("1"));
        folders.insert(folder, flags);
    }
    if (folders.isEmpty()) {
        *error = QStringLiteral("no folder given");
        return false;
    }
    *value = QString::fromUtf8(QJsonDocument(folders).toJson(QJsonDocument::Compact));
    return true;
}

QStringList FreeInputs::MissingFolders(const QString& value)
{
    QStringList missing;
    const QJsonObject folders = QJsonDocument::fromJson(value.trimmed().toUtf8()).object();
    for (auto it = folders.begin(); it != folders.end(); ++it)
        if (it.value().toObject().value(QStringLiteral("enabled")).toString() == QLatin1String("1") &&
            !QFileInfo(it.key()).isDir())
            missing << it.key();
    return missing;
}

QStringList FreeInputs::Apply(const QList<QPair<QString, QString>>& settings)
{
    QStringList problems;
    for (const auto& s : settings) {
        bool matched = false;
        for (Plugin::APCVar* v : m_vars.List()) {
            if (v->GetName() != s.first && v->GetDescription() != s.first)
                continue;
            matched = true;
            QString value = s.second;
            QString error;
            if (v->GetClass() == QLatin1String("multiDirectory") && !MultiDirectoryValue(s.second, &value, &error)) {
                problems << QStringLiteral("mbrun: \"%1\" takes folders separated by ';' or a JSON object such as "
                                           "{\"/data/scenes\":{\"subdir\":\"0\",\"enabled\":\"1\"}}; \"%2\" is neither (%3)\n")
                                .arg(v->GetDescription(), s.second, error);
                m_refused << v->GetName();
                continue;
            }
            if (v->GetClass() == QLatin1String("multiDirectory")) {
                // A mistyped folder would only make a batch that quietly does nothing.
                const QStringList missing = MissingFolders(value);
                if (!missing.isEmpty()) {
                    for (const QString& folder : missing)
                        problems << QStringLiteral("mbrun: \"%1\" names the folder %2, which does not exist\n")
                                        .arg(v->GetDescription(), folder);
                    m_refused << v->GetName();
                    continue;
                }
            }
            v->SetValue(value);
        }
        if (!matched)
            problems << QStringLiteral("mbrun: the model has no free input named \"%1\" (see --list)\n").arg(s.first);
    }
    return problems;
}

QStringList FreeInputs::Missing() const
{
    QStringList lines;
    for (Plugin::APCVar* v : m_vars.List())
        if (v->GetValue().isEmpty() && !m_refused.contains(v->GetName()))
            lines << QStringLiteral("Please set value: %1 (--set \"%1=...\")\n").arg(v->GetDescription());
    return lines;
}

QString FreeInputs::Table() const
{
    QString text = QStringLiteral("id\tdescription\ttype\n");
    for (Plugin::APCVar* v : m_vars.List())
        text += QStringLiteral("%1\t%2\t%3\n").arg(v->GetName(), v->GetDescription(), v->GetClass());
    return text;
}

QList<QPair<QString, QString>> FreeInputs::Values() const
{
    QList<QPair<QString, QString>> values;
    for (Plugin::APCVar* v : m_vars.List())
        values.append({v->GetDescription(), v->GetValue()});
    return values;
}

} // namespace Mbrun
