#pragma once

#include <QPointF>
#include <QString>

class QDomNode;
class QWidget;
class QXmlStreamWriter;

namespace Plugin {

class APCModel;
class APCObjectDialog;

// Everything that stands on a model: processes, vars and arrows. Objects refer to
// one another by id (name), never by pointer.
class APCObject
{
public:
    // A new object gets a fresh braced UUID as its id.
    APCObject();
    APCObject(const APCObject&) = default;
    APCObject& operator=(const APCObject&) = default;
    virtual ~APCObject();

    virtual void SetModel(APCModel* model);
    // The property dialog of the object, or null. The caller owns it.
    virtual APCObjectDialog* CreateDialog(QWidget* parent);
    // Reads the common attributes; a null node does nothing.
    virtual void ReadXml(const QDomNode& node);
    // Writes the common attributes into the element the caller opened.
    virtual void WriteXml(QXmlStreamWriter& writer, bool withElement);
    // A snapshot of the same logical object: the id and the model are copied too.
    virtual APCObject* Clone();
    virtual bool Check();

    QString GetName() const { return m_name; }
    void SetName(const QString& name);
    QString GetClass() const { return m_class; }
    void SetClass(const QString& className) { m_class = className; }
    QString GetDescription() const { return m_description; }
    void SetDescription(const QString& description) { m_description = description; }
    QString GetPainter() const { return m_painter; }
    void SetPainter(const QString& painter) { m_painter = painter; }
    QPointF GetPos() const { return m_pos; }
    void SetPos(const QPointF& pos) { m_pos = pos; }
    APCModel* GetModel() const { return m_model; }

protected:
    void ReadCommonAttributes(const QDomNode& node);
    void WriteCommonAttributes(QXmlStreamWriter& writer) const;

private:
    QString m_name;
    QString m_class;
    QString m_description;
    QString m_painter;
    QPointF m_pos;
    APCModel* m_model = nullptr; // not owned
};

} // namespace Plugin
