#include "model/APCVar.h"

#include "functions/APCFun.h"
#include "model/APCArrow.h"
#include "model/APCDialogFactory.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/VarReference.h"

#include <QDomElement>
#include <QRegExp>
#include <QXmlStreamWriter>

namespace Plugin {

APCVar::APCVar(const APCVar& other)
    : APCObject(other),
      m_runValue(other.GetRunValue()),
      m_constant(other.m_constant),
      m_value(other.m_value),
      m_funExp(other.m_funExp),
      m_fun(other.m_fun),
      m_typeParam(other.m_typeParam)
{
}

APCVar& APCVar::operator=(const APCVar& other)
{
    if (this == &other)
        return *this;
    APCObject::operator=(other);
    SetRunValue(other.GetRunValue());
    m_constant = other.m_constant;
    m_value = other.m_value;
    m_funExp = other.m_funExp;
    m_fun = other.m_fun;
    m_typeParam = other.m_typeParam;
    return *this;
}

APCVar::~APCVar() = default;

APCObject* APCVar::Clone() { return new APCVar(*this); }

void APCVar::SetModel(APCModel* model)
{
    APCObject::SetModel(model);
    if (m_fun)
        m_fun->SetModel(model);
}

APCObjectDialog* APCVar::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::VarDialog, this, parent);
}

DataTypeWidget* APCVar::CreateWidget() { return APCDialogFactory::Instance()->CreateWidget(this); }

QString APCVar::GetValue() const { return m_value; }
void APCVar::SetValue(const QString& value) { m_value = value; }
QString APCVar::GetFunExp() const { return m_funExp; }

void APCVar::SetFunExp(const QString& text)
{
    m_funExp = text;
    m_fun.reset(APCFun::Create(m_funExp));
    if (GetModel() && m_fun)
        m_fun->SetModel(GetModel());
}

QString APCVar::GetRunValue() const
{
    std::lock_guard<std::mutex> lock(m_runMutex);
    return m_runValue;
}

void APCVar::SetRunValue(const QString& value)
{
    std::lock_guard<std::mutex> lock(m_runMutex);
    m_runValue = value;
}

void APCVar::SetTypeParam(const QString& text)
{
    m_typeParam = text;
    APCModel* model = GetModel();
    if (!model)
        return;
    bool written = false, read = false;
    for (APCArrow* arrow : model->ArrowsOfVar(this)) {
        written = written || arrow->GetHead() == GetName();
        read = read || arrow->GetTail() == GetName();
    }
    if (written && read)
        m_typeParam.replace(QRegExp(QStringLiteral("\"direction\":\"[01]\"")), QStringLiteral("\"direction\":\"2\""));
}

bool APCVar::IsIteratorOutput() const
{
    APCModel* model = GetModel();
    if (!model)
        return false;
    return model->IsIteratorOutput(GetName());
}

bool APCVar::IsFree() const
{
    if (IsIteratorOutput())
        return false;
    return m_constant ? m_value.isEmpty() : m_funExp.isEmpty();
}

bool APCVar::ResolveValue()
{
    if (IsIteratorOutput())
        return true;
    if (m_constant) {
        SetRunValue(m_value);
        return !m_value.isEmpty();
    }
    APCModel* model = GetModel();
    for (const QString& id : ReferencedIdsIn(m_funExp)) {
        APCVar* var = model ? model->FindVar(id) : nullptr;
        if (!var || var->GetRunValue().isEmpty())
            return false;
    }
    if (m_fun)
        SetRunValue(m_fun->Evaluate());
    return !GetRunValue().isEmpty();
}

void APCVar::ReadXml(const QDomNode& node)
{
    if (node.isNull())
        return;
    const QDomElement e = node.toElement();
    m_constant = e.attribute(QStringLiteral("constant")).toInt() != 0;
    if (m_constant)
        m_value = e.attribute(QStringLiteral("value"));
    else
        SetFunExp(e.attribute(QStringLiteral("funExp")));
    const QString typeParam = e.attribute(QStringLiteral("typeParam"));
    if (!typeParam.isEmpty())
        m_typeParam = typeParam;
    ReadCommonAttributes(node);
}

void APCVar::WriteXml(QXmlStreamWriter& writer, bool withElement)
{
    if (withElement)
        writer.writeStartElement(QStringLiteral("Var"));
    WriteCommonAttributes(writer);
    writer.writeAttribute(QStringLiteral("constant"), m_constant ? QStringLiteral("1") : QStringLiteral("0"));
    if (m_constant)
        writer.writeAttribute(QStringLiteral("value"), m_value);
    else
        writer.writeAttribute(QStringLiteral("funExp"), m_funExp);
    writer.writeAttribute(QStringLiteral("typeParam"), m_typeParam);
    if (withElement)
        writer.writeEndElement();
}

} // namespace Plugin
