#include "model/APCProcess.h"

#include "model/PainterText.h"

#include <QDomElement>
#include <QXmlStreamWriter>

namespace Plugin {

QRectF APCProcess::GetRect() const
{
    const QSizeF size = PainterText::ReadSize(GetPainter());
    QRectF rect(QPointF(), size);
    rect.moveCenter(GetPos());
    return rect;
}

void APCProcess::SetRect(const QRectF& rect)
{
    SetPos(rect.center());
    SetPainter(PainterText::SizeText(rect.width(), rect.height()));
}

void APCProcess::CopyProcessFrom(const APCProcess& other)
{
    APCObject::operator=(other);
    m_parameters = other.m_parameters;
    m_processName = other.m_processName;
}

APCObject* APCProcess::Clone()
{
    auto* copy = new APCProcess;
    copy->CopyProcessFrom(*this);
    return copy;
}

bool APCProcess::Check()
{
    for (const APCParameter& p : m_parameters)
        if (p.value.isEmpty())
            return false;
    return true;
}

void APCProcess::SetProcessName(const QString& name) { m_processName = name; }

APCParameter APCProcess::GetParameter(const QString& name) const
{
    for (const APCParameter& p : m_parameters)
        if (p.name == name)
            return p;
    return APCParameter();
}

void APCProcess::ReadXml(const QDomNode& node)
{
    ReadProcessXml(node);
}

void APCProcess::ReadProcessXml(const QDomNode& node)
{
    if (node.isNull())
        return;
    m_parameters.clear();
    const QDomElement e = node.toElement();
    m_processName = e.attribute(QStringLiteral("processName"));
    for (QDomElement child = e.firstChildElement(QStringLiteral("Parameter")); !child.isNull();
         child = child.nextSiblingElement(QStringLiteral("Parameter"))) {
        APCParameter p;
        p.name = child.attribute(QStringLiteral("name"));
        p.type = child.attribute(QStringLiteral("type"));
        p.direction = child.attribute(QStringLiteral("direction")).toInt(nullptr, 10);
        p.value = child.attribute(QStringLiteral("value"));
        p.description = child.attribute(QStringLiteral("description"));
        m_parameters.append(p);
    }
    ReadCommonAttributes(node);
}

void APCProcess::WriteXml(QXmlStreamWriter& writer, bool withElement)
{
    WriteProcessElement(writer, withElement);
}

void APCProcess::WriteProcessElement(QXmlStreamWriter& writer, bool withElement)
{
    if (withElement)
        writer.writeStartElement(QStringLiteral("Process"));
    WriteCommonAttributes(writer);
    writer.writeAttribute(QStringLiteral("processName"), m_processName);
    for (const APCParameter& p : m_parameters) {
        writer.writeStartElement(QStringLiteral("Parameter"));
        writer.writeAttribute(QStringLiteral("name"), p.name);
        writer.writeAttribute(QStringLiteral("type"), p.type);
        writer.writeAttribute(QStringLiteral("direction"), QString::number(p.direction));
        writer.writeAttribute(QStringLiteral("value"), p.value);
        writer.writeAttribute(QStringLiteral("description"), p.description);
        writer.writeEndElement();
    }
    if (withElement)
        writer.writeEndElement();
}

} // namespace Plugin
