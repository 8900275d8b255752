#include "HostCatalogGui/AlgoInfo.h"

#include "HostCatalog/GetParamValue.h"
#include "HostCatalog/Metadata.h"
#include "HostCatalogGui/AlgoForm.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Plugin {

namespace {

// A JSON string of text in ASCII only: readers convert our text to their local 8-bit
// encoding before parsing, and an escape passes through every such conversion.
QString jsonString(const QString& text)
{
    QString out(QLatin1Char('"'));
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '"': out += QLatin1String("\\\""); break;
        case '\\': out += QLatin1String("\\\\"); break;
        case '\n': out += QLatin1String("\\n"); break;
        case '\r': out += QLatin1String("\\r"); break;
        case '\t': out += QLatin1String("\\t"); break;
        default:
            if (c.unicode() < 0x20 || c.unicode() > 0x7e)
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            else
                out += c;
        }
    }
    return out + QLatin1Char('"');
}

} // namespace

AlgoInfo::AlgoInfo(const AlgoConfig& config, QWidget* parent) : m_config(config), m_parent(parent)
{
    for (const Param& param : m_config.GetParams())
        m_values << param.defaultValue;
}

AlgoInfo::~AlgoInfo()
{
    delete m_form.data();
}

void AlgoInfo::SetAlgoParams(const QString& json)
{
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(json.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject())
        return;
    QJsonObject object = doc.object();
    const QList<Param>& params = m_config.GetParams();
    for (int i = 0; i < params.size(); ++i) {
        if (object.contains(params[i].name))
            m_values[i] = GetParamValue(object, {params[i].name});
        object.remove(params[i].name);
    }
    for (auto it = object.constBegin(); it != object.constEnd(); ++it)
        m_unlisted.insert(it.key(), GetParamValue(object, {it.key()}));
    if (m_form)
        m_form->SetValues(m_values);
}

QString AlgoInfo::GetAlgoParams()
{
    const QStringList values = m_form ? m_form->GetValues() : m_values;
    const QList<Param>& params = m_config.GetParams();
    QStringList members;
    for (int i = 0; i < params.size(); ++i)
        members << jsonString(params[i].name) + QLatin1Char(':') + jsonString(values.value(i));
    for (auto it = m_unlisted.constBegin(); it != m_unlisted.constEnd(); ++it)
        members << jsonString(it.key()) + QLatin1Char(':') + jsonString(it.value());
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

QDialog* AlgoInfo::GetAlgoDialog()
{
    return Form();
}

AlgoForm* AlgoInfo::Form()
{
    if (m_form)
        return m_form;
    m_form = new AlgoForm(m_config, m_parent);
    m_form->SetValues(m_values);
    AlgoForm* form = m_form;
    QObject::connect(form, &QDialog::accepted, form, [this, form] { m_values = form->GetValues(); });
    QObject::connect(form, &QDialog::rejected, form, [this, form] { form->SetValues(m_values); });
    return m_form;
}

AlgoInfo* GetAlgoInfo(const QString& name, QWidget* parent)
{
    const AlgoConfig* config = Metadata::Instance(QString())->GetConfig(name);
    return config ? new AlgoInfo(*config, parent) : nullptr;
}

#ifdef MB_METADATA_HAS_ALGOINFO
AlgoInfo* Metadata::GetAlgoInfo(const QString& name, QWidget* parent)
{
    return Plugin::GetAlgoInfo(name, parent);
}
#endif

} // namespace Plugin
