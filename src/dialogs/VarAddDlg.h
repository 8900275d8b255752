#pragma once

#include <QDialog>
#include <QString>

class QListWidget;

// Asks for the data type of a new var: the host's data types by label, sorted,
// the first one selected. OK without a selected row is refused with a message.
class VarAddDlg : public QDialog
{
    Q_OBJECT

public:
    explicit VarAddDlg(QWidget* parent);

    // The chosen type (a Param::type string); empty until OK.
    QString GetDataType() const { return m_dataType; }
    // The chosen type's label as listed; empty until OK.
    QString GetDataTypeLabel() const { return m_dataTypeLabel; }

public slots:
    void OnOKClicked(bool checked);
    void OnCancelClicked(bool checked);

private:
    QString m_dataType;
    QString m_dataTypeLabel;
    QListWidget* m_types = nullptr; // child
};
