#pragma once

#include "model/APCObject.h"

namespace Plugin {

// A connection between a var and a process parameter; data flows from tail to head.
class APCArrow : public APCObject
{
public:
    APCArrow();

    APCObjectDialog* CreateDialog(QWidget* parent) override;
    void ReadXml(const QDomNode& node) override;
    // Always writes its own Arrow element.
    void WriteXml(QXmlStreamWriter& writer, bool withElement) override;
    APCObject* Clone() override;

    QString GetHead() const { return m_head; }
    void SetHead(const QString& v) { m_head = v; }
    QString GetHeadType() const { return m_headType; }
    void SetHeadType(const QString& v) { m_headType = v; }
    QString GetHeadParam() const { return m_headParam; }
    void SetHeadParam(const QString& v) { m_headParam = v; }
    QString GetTail() const { return m_tail; }
    void SetTail(const QString& v) { m_tail = v; }
    QString GetTailType() const { return m_tailType; }
    void SetTailType(const QString& v) { m_tailType = v; }
    QString GetTailParam() const { return m_tailParam; }
    void SetTailParam(const QString& v) { m_tailParam = v; }

private:
    QString m_head;
    QString m_headType;
    QString m_headParam;
    QString m_tail;
    QString m_tailType;
    QString m_tailParam;
};

} // namespace Plugin
