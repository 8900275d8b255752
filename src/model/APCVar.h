#pragma once

#include "model/APCObject.h"

#include <memory>
#include <mutex>

namespace Plugin {

class APCFun;
class DataTypeWidget;

// A data node: holds a constant text or computes one from a path expression.
// Its class is the data type name of the parameter it serves.
class APCVar : public APCObject
{
public:
    APCVar() = default;
    // Copies share the parsed expression with their source.
    APCVar(const APCVar& other);
    APCVar& operator=(const APCVar& other);
    ~APCVar() override;

    // Stores the model and binds the expression to its vars.
    void SetModel(APCModel* model) override;
    APCObjectDialog* CreateDialog(QWidget* parent) override;
    void ReadXml(const QDomNode& node) override;
    // Writes a Var element (or only its attributes when withElement is false).
    void WriteXml(QXmlStreamWriter& writer, bool withElement) override;
    APCObject* Clone() override;

    virtual QString GetValue() const;
    virtual void SetValue(const QString& value);
    virtual QString GetFunExp() const;
    // Stores and parses the expression; binds it when the var has a model.
    virtual void SetFunExp(const QString& text);
    // The editor widget of the data type; the caller owns it. Null without a GUI catalogue.
    virtual DataTypeWidget* CreateWidget();

    QString GetTypeParam() const { return m_typeParam; }
    // Stores text; a var both written and read gets "direction":"2".
    void SetTypeParam(const QString& text);
    // Stores text as it stands (file reading).
    void SetTypeParamRaw(const QString& text) { m_typeParam = text; }
    bool GetConstant() const { return m_constant; }
    void SetConstant(bool constant) { m_constant = constant; }
    QString GetRunValue() const;
    void SetRunValue(const QString& value);
    APCFun* GetFun() const { return m_fun.get(); }

    // An iterator writes this var at every round.
    bool IsIteratorOutput() const;
    // An open input of the model: something outside must give it a value.
    bool IsFree() const;
    // Computes runValue; true when it is ready (non-empty).
    bool ResolveValue();

private:
    // Steps read and write run values from pool threads.
    mutable std::mutex m_runMutex;
    QString m_runValue;
    bool m_constant = false;
    QString m_value;
    QString m_funExp;
    std::shared_ptr<APCFun> m_fun; // shared with clones
    QString m_typeParam;
};

} // namespace Plugin
