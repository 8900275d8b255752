#include "editor/APCConsoleLog.h"
#include "editor/LogWidget.h"
#include "editor/ModelControler.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QMenu>

namespace Plugin {

void APCConsoleLog::Write(const QString& text)
{
    APCLog::Write(text);
    m_window->AppendLog(text, 0);
}

void APCConsoleLog::WriteError(const QString& text)
{
    APCLog::WriteError(text);
    m_window->AppendLog(text, 1);
}

void LogWidget::ClearLog()
{
    setText(QString());
    moveCursor(QTextCursor::End);
}

void LogWidget::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu* menu = createStandardContextMenu();
    QAction* clear = menu->addAction(QCoreApplication::translate("LogWidget", "Clear Log"));
    connect(clear, &QAction::triggered, this, [this] { ClearLog(); });
    menu->exec(event->globalPos());
    delete menu;
}

} // namespace Plugin
