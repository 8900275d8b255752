#include "model/APCObject.h"

#include "model/APCModel.h"

#include <QDomElement>
#include <QUuid>
#include <QXmlStreamWriter>

namespace Plugin {

APCObject::APCObject() : m_name(QUuid::createUuid().toString()) {}

APCObject::~APCObject() = default;

void APCObject::SetName(const QString& name)
{
    m_name = name;
    if (m_model)
        m_model->InvalidateIndex();
}

void APCObject::SetModel(APCModel* model) { m_model = model; }

APCObjectDialog* APCObject::CreateDialog(QWidget*) { return nullptr; }

void APCObject::ReadXml(const QDomNode& node)
{
    if (node.isNull())
        return;
    ReadCommonAttributes(node);
}

void APCObject::WriteXml(QXmlStreamWriter& writer, bool)
{
    WriteCommonAttributes(writer);
}

APCObject* APCObject::Clone() { return new APCObject(*this); }

bool APCObject::Check() { return true; }

void APCObject::ReadCommonAttributes(const QDomNode& node)
{
    const QDomElement e = node.toElement();
    const QString className = e.attribute(QStringLiteral("class"));
    if (!className.isEmpty())
        m_class = className;
    SetName(e.attribute(QStringLiteral("name")));
    m_description = e.attribute(QStringLiteral("description"));
    m_pos = QPointF(e.attribute(QStringLiteral("posX")).toDouble(), e.attribute(QStringLiteral("posY")).toDouble());
    m_painter = e.attribute(QStringLiteral("painter"));
}

void APCObject::WriteCommonAttributes(QXmlStreamWriter& writer) const
{
    writer.writeAttribute(QStringLiteral("class"), m_class);
    if (!m_name.isEmpty())
        writer.writeAttribute(QStringLiteral("name"), m_name);
    if (!m_description.isEmpty())
        writer.writeAttribute(QStringLiteral("description"), m_description);
    writer.writeAttribute(QStringLiteral("posX"), QString::number(m_pos.x(), 'g', 6));
    writer.writeAttribute(QStringLiteral("posY"), QString::number(m_pos.y(), 'g', 6));
    writer.writeAttribute(QStringLiteral("painter"), m_painter);
}

} // namespace Plugin
