#pragma once

#include <QDialog>
#include <QString>

class QLineEdit;

// Asks for the name and description of a model. Without a file it makes a new
// model's file name; with one it edits that model, and renames the file on the
// disk before it accepts. The file is relative to the application root.
class ATBCreateCircuitDlg : public QDialog
{
    Q_OBJECT
public:
    explicit ATBCreateCircuitDlg(QWidget* parent = nullptr);

    // The name as typed; the file name adds ".apc" to it.
    void SetName(const QString& name);
    QString GetName() const;
    void SetDescription(const QString& description);
    QString GetDescription() const;
    // Empty for a new model; the model's file when editing one.
    void SetFile(const QString& file) { m_file = file; }
    QString GetFile() const { return m_file; }

    // The file of a model named name: "Model/apc/" + name, with ".apc" added
    // unless name already ends in exactly that.
    static QString FileForName(const QString& name);

public slots:
    // Checks the name and the file it gives, renames an edited model's file,
    // and accepts; a refused name is said in a message and the dialog stays.
    void OnOKClicked(bool checked);
    // Closes the dialog unaccepted.
    void OnCancelClicked(bool checked);

private:
    QLineEdit* m_nameEdit;
    QLineEdit* m_descriptionEdit;
    QString m_file;
};
