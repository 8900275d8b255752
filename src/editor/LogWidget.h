#pragma once

#include <QTextEdit>

namespace Plugin {

// A log panel; its menu can clear what it shows (the run's log text stays).
class LogWidget : public QTextEdit
{
public:
    explicit LogWidget(QWidget* parent = nullptr) : QTextEdit(parent) {}

    // Empties the panel only.
    void ClearLog();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
};

} // namespace Plugin
