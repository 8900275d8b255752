#include "model/APCArrow.h"
#include "model/APCDialogFactory.h"

#include <QDomElement>
#include <QXmlStreamWriter>

namespace Plugin {

APCArrow::APCArrow() { SetClass(QStringLiteral("arrow")); }

APCObject* APCArrow::Clone() { return new APCArrow(*this); }

void APCArrow::ReadXml(const QDomNode& node)
{
    if (node.isNull())
        return;
    const QDomElement e = node.toElement();
    m_head = e.attribute(QStringLiteral("head"));
    m_headType = e.attribute(QStringLiteral("headType"));
    m_headParam = e.attribute(QStringLiteral("headParam"));
    m_tail = e.attribute(QStringLiteral("tail"));
    m_tailType = e.attribute(QStringLiteral("tailType"));
    m_tailParam = e.attribute(QStringLiteral("tailParam"));
    ReadCommonAttributes(node);
}

void APCArrow::WriteXml(QXmlStreamWriter& writer, bool)
{
    writer.writeStartElement(QStringLiteral("Arrow"));
    writer.writeAttribute(QStringLiteral("head"), m_head);
    writer.writeAttribute(QStringLiteral("headType"), m_headType);
    writer.writeAttribute(QStringLiteral("headParam"), m_headParam);
    writer.writeAttribute(QStringLiteral("tail"), m_tail);
    writer.writeAttribute(QStringLiteral("tailType"), m_tailType);
    writer.writeAttribute(QStringLiteral("tailParam"), m_tailParam);
    WriteCommonAttributes(writer);
    writer.writeEndElement();
}

} // namespace Plugin

namespace Plugin {
// The arrow dialog lives with the editor's dialogs; without them there is none.
APCObjectDialog* APCArrow::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::ArrowDialog, this, parent);
}
} // namespace Plugin
