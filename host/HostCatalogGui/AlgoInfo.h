#pragma once

#include "HostCatalog/AlgoConfig.h"

#include <QMap>
#include <QPointer>
#include <QString>
#include <QStringList>

class QDialog;
class QWidget;

namespace Plugin {

class AlgoForm;

// One algorithm's form and the parameter values it edits. The values live here, the
// form shows them: OK on the form keeps what it shows, Cancel puts back what it had.
class AlgoInfo
{
public:
    // Values start at the catalogue's defaults; parent, which may be null, becomes
    // the parent of the form.
    AlgoInfo(const AlgoConfig& config, QWidget* parent);
    ~AlgoInfo();
    AlgoInfo(const AlgoInfo&) = delete;
    AlgoInfo& operator=(const AlgoInfo&) = delete;

    // Takes values from json, a flat object of parameter name -> string value. A
    // parameter json lacks keeps its value; bad JSON or a non-object changes nothing.
    // Members the catalogue does not list are kept and given back by GetAlgoParams.
    void SetAlgoParams(const QString& json);
    // The values as the form has them: a JSON object text with every catalogue
    // parameter in catalogue order, then the members SetAlgoParams got that the
    // catalogue does not list. All characters beyond ASCII are escaped, so the text
    // survives any 8-bit conversion.
    QString GetAlgoParams();
    // The form, made on first use. Owned by this object; if the parent deletes it
    // first, the next call makes a new one with the values last kept.
    QDialog* GetAlgoDialog();

private:
    AlgoForm* Form();

    AlgoConfig m_config;
    QPointer<QWidget> m_parent;
    QPointer<AlgoForm> m_form;         // owned; QPointer as the parent may delete it
    QStringList m_values;              // one per parameter: set, or accepted on the form
    QMap<QString, QString> m_unlisted; // members of SetAlgoParams not in the catalogue
};

// The AlgoInfo of the algorithm named name in the catalogue, or null when the
// catalogue does not know it. The caller owns the result.
AlgoInfo* GetAlgoInfo(const QString& name, QWidget* parent);

} // namespace Plugin
