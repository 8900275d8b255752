#pragma once

#include <QDialog>
#include <QStringList>

#include <vector>

class QScrollArea;

namespace Plugin {

class AlgoConfig;

// The form of one algorithm: a value widget per catalogue parameter, in catalogue
// order, captioned with the parameter's description, then OK and Cancel. A required
// parameter (neither optional nor with a default) has a bold caption ending in " *",
// and OK refuses, naming it, while it is empty. A value that refers to a var of the
// model ("%" + id + "%") is kept verbatim, read-only, until the user unlinks it.
// The form only shows values; AlgoInfo decides what they are.
class AlgoForm : public QDialog
{
    Q_OBJECT

public:
    AlgoForm(const AlgoConfig& config, QWidget* parent);
    ~AlgoForm() override;

    // One value per parameter, in catalogue order, as the user now sees them.
    QStringList GetValues() const;
    // Shows values, one per parameter in catalogue order; missing ones are left.
    void SetValues(const QStringList& values);

public slots:
    void OnOKClicked(bool checked);
    void OnCancelClicked(bool checked);

private:
    struct Row;

    std::vector<Row> m_rows;
    QScrollArea* m_scroll = nullptr; // child
};

} // namespace Plugin
