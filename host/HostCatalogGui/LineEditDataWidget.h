#pragma once

#include "HostCatalogGui/DataTypeWidget.h"

class QLineEdit;
class QToolButton;
class QVBoxLayout;

namespace Plugin {

// A value edited as one line of text, with a "..." button for the types that pick
// paths. The line holds any text, of any length, as it was given.
class LineEditDataWidget : public DataTypeWidget
{
    Q_OBJECT

public:
    QString GetValue() override;
    void SetValue(const QString& value) override;

    // Shows the value for reading and copying only; the browse button goes too.
    void SetReadOnly(bool readOnly);

protected:
    enum Button { NoButton, BrowseButton };

    LineEditDataWidget(Button button, QWidget* parent);

    QLineEdit* Edit() const { return m_edit; }
    // Puts widget below the line (a message, a hint).
    void AddBelow(QWidget* widget);
    // The "..." button was clicked.
    virtual void Browse() {}

private:
    QLineEdit* m_edit = nullptr;      // child
    QToolButton* m_browse = nullptr;  // child; null without a button
    QVBoxLayout* m_column = nullptr;  // owned by the body
};

} // namespace Plugin
