#pragma once

#include <QDialog>

class QTabWidget;

namespace Plugin {
class DataTypeWidget;
}

// Asks for the values of a model's free inputs before a run: one tab for each,
// and OK refuses while any is empty. The run command fills it and reads it back.
class RunCmdDlg : public QDialog
{
    Q_OBJECT

public:
    explicit RunCmdDlg(QWidget* parent);

    // The tab widget becomes widget's parent; title is the tab's text.
    void AddPage(Plugin::DataTypeWidget* widget, const QString& title);

public slots:
    void OnOKClicked(bool checked);
    void OnCancelClicked(bool checked);

private:
    QTabWidget* m_tabs = nullptr; // child
};
