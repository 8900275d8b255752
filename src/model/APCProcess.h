#pragma once

#include "model/APCObject.h"
#include "model/APCParameter.h"
#include "model/IAPCExecute.h"

#include <QList>
#include <QRectF>

namespace Plugin {

// A step of the model: an object with parameters that can be executed.
class APCProcess : public APCObject, public IAPCExecute
{
public:
    // The rectangle of the step on the canvas: the size from the painter text,
    // centred on the position.
    QRectF GetRect() const;
    // Stores the rectangle's centre as the position and its size as the painter.
    void SetRect(const QRectF& rect);

    APCProcess() = default;
    ~APCProcess() override = default;

    void ReadXml(const QDomNode& node) override;
    // Writes a Process element (or only its content when withElement is false).
    void WriteXml(QXmlStreamWriter& writer, bool withElement) override;
    APCObject* Clone() override;
    // Every parameter has a value.
    bool Check() override;
    // Stores what the process runs; algorithm and model steps load parameters here.
    virtual void SetProcessName(const QString& name);

    QString GetDescription() override { return APCObject::GetDescription(); }

    // A copy of the first parameter named name, or an empty-named one when there is none.
    APCParameter GetParameter(const QString& name) const;
    QList<APCParameter>& GetParameters() { return m_parameters; }
    const QList<APCParameter>& GetParameters() const { return m_parameters; }
    void SetParameters(const QList<APCParameter>& parameters) { m_parameters = parameters; }
    QString GetProcessName() const { return m_processName; }

protected:
    // Copies the process fields of other (not the executable state).
    void CopyProcessFrom(const APCProcess& other);
    // Reads processName and the Parameter children, then the common attributes.
    void ReadProcessXml(const QDomNode& node);
    // Writes the Process element with its parameters.
    void WriteProcessElement(QXmlStreamWriter& writer, bool withElement);
    void StoreProcessName(const QString& name) { m_processName = name; }

private:
    QList<APCParameter> m_parameters;
    QString m_processName;
};

} // namespace Plugin
