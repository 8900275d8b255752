#include "engine/APCAlgo.h"

#include "HostCatalog/GetParamValue.h"
#include "HostCatalog/Metadata.h"
#include "HostRunner/ExcuteAlgo.h"
#include "HostRunner/RunRecord.h"
#include "model/APCDialogFactory.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/VarReference.h"

#include <QDomNode>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstring>

namespace Plugin {

namespace {

QString escapeQuotes(QString value)
{
    return value.replace(QLatin1Char('"'), QStringLiteral("\\\""));
}

} // namespace

APCAlgo::APCAlgo() : m_record(new HostRunner::RunRecord)
{
    std::memset(m_record.get(), 0, sizeof(HostRunner::RunRecord));
    m_record->callback = &APCAlgo::OnRunProgress;
    m_record->userData = this;
}

APCAlgo::~APCAlgo() = default;

APCObject* APCAlgo::Clone()
{
    auto* copy = new APCAlgo;
    copy->CopyProcessFrom(*this);
    return copy;
}

bool APCAlgo::Check()
{
    for (const APCParameter& p : GetParameters())
        if (p.value.isEmpty() && !p.isOptional)
            return false;
    return true;
}

QStringList APCAlgo::ParameterProblem() const
{
    // Before a run a var has no run value yet: its own value (a constant, a free input
    // that was set) tells the output's format as well.
    APCModel* model = GetModel();
    QJsonObject values;
    for (const APCParameter& p : GetParameters()) {
        QString value = RunValueOf(model, p.value);
        if (value.isEmpty())
            if (const APCVar* var = ReferencedVar(model, p.value))
                value = var->GetValue();
        values.insert(p.name, value);
    }
    const QString text = QString::fromUtf8(QJsonDocument(values).toJson(QJsonDocument::Compact));
    QString parameter, reason;
    if (HostRunner::CheckParameters(GetProcessName(), text, &parameter, &reason))
        return {};
    return {parameter, reason};
}

void APCAlgo::ReadXml(const QDomNode& node)
{
    if (node.isNull())
        return;
    ReadProcessXml(node);
    SetProcessName(GetProcessName());
}

void APCAlgo::WriteXml(QXmlStreamWriter& writer, bool)
{
    WriteProcessElement(writer, true);
}

void APCAlgo::SetProcessName(const QString& name)
{
    AlgoConfig* config = Metadata::Instance(QString())->GetConfig(name);
    if (!config)
        return;
    StoreProcessName(config->GetName());
    SetDescription(config->GetDisplayText());
    SetPainter(QString());
    QList<APCParameter>& params = GetParameters();
    for (const Param& catalogParam : config->GetParams()) {
        APCParameter fresh(catalogParam);
        bool known = false;
        for (APCParameter& existing : params) {
            if (existing.name != fresh.name)
                continue;
            existing.catalogTag = fresh.catalogTag;
            existing.typeParam = fresh.typeParam;
            existing.defaultValue = fresh.defaultValue;
            existing.isOptional = fresh.isOptional;
            known = true;
            break;
        }
        if (!known)
            params.append(fresh);
    }
}

QString APCAlgo::ExecutionText() const
{
    APCModel* model = GetModel();
    QString json = QStringLiteral("{");
    for (const APCParameter& p : GetParameters()) {
        // A reference to a missing var sends an empty value; the algorithm then
        // reports the missing input itself.
        const QString value = RunValueOf(model, p.value);
        json += QLatin1Char('"') + p.name + QStringLiteral("\":\"") + escapeQuotes(value) + QStringLiteral("\",");
    }
    if (json.endsWith(QLatin1Char(',')))
        json.chop(1);
    json += QLatin1Char('}');
    return json;
}

QString APCAlgo::DialogText() const
{
    const QList<APCParameter>& params = GetParameters();
    if (params.isEmpty())
        return QString();
    QString text = QStringLiteral("{\"");
    for (int i = 0; i < params.size(); ++i) {
        text += params[i].name + QStringLiteral("\":\"") + escapeQuotes(params[i].value);
        text += i + 1 == params.size() ? QStringLiteral("\"}") : QStringLiteral("\", \"");
    }
    return text;
}

bool APCAlgo::ApplyDialogResult(const QString& json)
{
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(json.toLocal8Bit(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject())
        return false;
    const QJsonObject object = doc.object();
    for (APCParameter& p : GetParameters())
        p.value = GetParamValue(object, QStringList{p.name});
    if (GetModel())
        GetModel()->UpdateProcess(this);
    return true;
}

bool APCAlgo::Execute()
{
    const QString processName = GetProcessName();
    const QByteArray name = processName.toLocal8Bit();
    const QByteArray parameters = ExecutionText().toLocal8Bit();
    const int result = HostRunner::ExcuteAlgo(name.constData(), parameters.constData(), m_record.get());
    const int code = m_record->errorCode;
    m_record->errorMessage[sizeof(m_record->errorMessage) - 1] = '\0';
    // The record has room for 259 bytes: the runner keeps the whole text beside it,
    // and GDAL's reason often stands at its end.
    const QByteArray recorded(m_record->errorMessage);
    const QByteArray whole(HostRunner::ExcuteAlgoMessage());
    SetError(code, QString(whole.startsWith(recorded) ? whole : recorded));
    SetSucceeded(code == 0);
    return (result & 0xff) != 0;
}

int APCAlgo::OnRunProgress(double percent, const char* text, void* userData)
{
    auto* self = static_cast<APCAlgo*>(userData);
    if (self)
        self->Progress(percent, QString(text ? text : ""), userData);
    return 0;
}

} // namespace Plugin

namespace Plugin {
APCObjectDialog* APCAlgo::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::AlgoDialog, this, parent);
}
} // namespace Plugin
