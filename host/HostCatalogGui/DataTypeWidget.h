#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace Plugin {

// Edits one parameter value as text. Every widget of the family gives back from
// GetValue exactly the text it was given by SetValue until the user changes it, also
// when it cannot show that text in its own terms (a var reference, a value from a newer
// host). Made by DataTypeFactory; owned by the caller or the layout it goes into.
class DataTypeWidget : public QWidget
{
    Q_OBJECT

public:
    explicit DataTypeWidget(QWidget* parent = nullptr);
    ~DataTypeWidget() override;

    // The value as the widget now has it; empty means that nothing has been set.
    virtual QString GetValue() = 0;
    // Shows value; any text is taken, whether or not the widget can parse it.
    virtual void SetValue(const QString& value) = 0;
    // The text shown above the editor; empty hides the caption.
    virtual void SetCaption(const QString& caption);

    // Bold caption, for a form that marks what the user must fill in.
    void SetCaptionBold(bool bold);
    // The caption as given to SetCaption.
    QString GetCaption() const;

protected:
    // Puts the editor below the caption; the caption's mnemonic focuses focusTarget.
    void SetBody(QWidget* body, QWidget* focusTarget);
    // The editor that takes the focus for the whole widget.
    void SetFocusTarget(QWidget* focusTarget);

private:
    QVBoxLayout* m_layout = nullptr; // owned by this widget
    QLabel* m_caption = nullptr;     // child
    QString m_captionText;
};

} // namespace Plugin
