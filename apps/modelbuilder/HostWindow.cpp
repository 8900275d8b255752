#include "HostWindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFrame>
#include <QLabel>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

const char* const kGeometryKey = "MainWindow/geometry";
const char* const kStateKey = "MainWindow/state";
const int kStateVersion = 1;
const int kDockWidth = 300;

// The host's own settings; the plug-in keeps none.
QSettings hostSettings() { return QSettings(QStringLiteral("ReferenceHost"), QStringLiteral("GeodataDesktop")); }

// The plug-in's commands carry no picture: the host gives them ones from the
// plug-in's resources, and a plain one to a command it does not know.
QIcon iconFor(const QString& commandName)
{
    if (commandName.compare(QLatin1String("ToolBox_ToolBox"), Qt::CaseInsensitive) == 0)
        return QIcon(QStringLiteral(":/res/ATB_Group.ico"));
    if (commandName.compare(QLatin1String("ToolBox_Python"), Qt::CaseInsensitive) == 0)
        return QIcon(QStringLiteral(":/res/ATB_Python.ico"));
    return QApplication::style()->standardIcon(QStyle::SP_FileIcon);
}

// Where the map would be: a quiet frame that says why it is empty.
QWidget* makeMapFrame()
{
    auto* frame = new QFrame;
    frame->setObjectName(QStringLiteral("MapFrame"));
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setAutoFillBackground(true);
    QPalette palette = frame->palette();
    palette.setColor(QPalette::Window, QColor(0xf4, 0xf5, 0xf7));
    palette.setColor(QPalette::WindowText, QColor(0x8a, 0x8f, 0x98));
    frame->setPalette(palette);
    auto* hint = new QLabel(QCoreApplication::translate(
        "HostWindow", "No data in the map.\nOpen a model from the Tool Box to build and run it."));
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true); // on a small screen the docks keep their width
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(hint);
    return frame;
}

} // namespace

HostWindow::HostWindow() : m_toolBar(addToolBar(QCoreApplication::translate("HostWindow", "Commands")))
{
    m_toolBar->setObjectName(QStringLiteral("Commands"));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toolBar->setIconSize(QSize(20, 20));
    setCentralWidget(makeMapFrame());
    statusBar();
}

void HostWindow::AddCommand(const HostCore::_ptr_t<HostShell::ICommand>& command)
{
    m_commands.push_back(command);
    HostShell::ICommand* raw = command.get();
    QAction* action = m_toolBar->addAction(iconFor(raw->GetName()), raw->GetCaption());
    action->setToolTip(raw->GetToolTip());
    action->setObjectName(raw->GetName());
    connect(action, &QAction::triggered, this, [raw] { raw->OnClick(); });
    m_actions.push_back(action);
}

QAction* HostWindow::FindAction(const QString& commandName) const
{
    return findChild<QAction*>(commandName);
}

void HostWindow::StartPolling()
{
    // Commands are asked often whether they are enabled, as the host's frame does.
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] {
        for (size_t i = 0; i < m_commands.size(); ++i)
            m_actions[i]->setEnabled(m_commands[i]->IsEnable());
    });
    timer->start(250);
}

void HostWindow::RestoreGeometry()
{
    if (restoreGeometry(hostSettings().value(QLatin1String(kGeometryKey)).toByteArray()))
        return;
    // A first run: most of the screen, in its middle.
    const QRect screen = QApplication::primaryScreen() ? QApplication::primaryScreen()->availableGeometry()
                                                       : QRect(0, 0, 1280, 800);
    const QSize size(qMin(1200, screen.width() * 9 / 10), qMin(760, screen.height() * 9 / 10));
    resize(size);
    move(screen.center() - QPoint(size.width() / 2, size.height() / 2));
}

void HostWindow::RestoreDocks()
{
    if (restoreState(hostSettings().value(QLatin1String(kStateKey)).toByteArray(), kStateVersion))
        return;
    QList<QDockWidget*> docks;
    QList<int> widths;
    for (QDockWidget* dock : findChildren<QDockWidget*>())
        if (dockWidgetArea(dock) == Qt::RightDockWidgetArea) {
            docks.append(dock);
            widths.append(kDockWidth);
        }
    resizeDocks(docks, widths, Qt::Horizontal);
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    // The plug-in's own windows (model editors) are closed first, so each can
    // ask about unsaved edits; one that refuses keeps the application open.
    for (QMainWindow* child : findChildren<QMainWindow*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && !child->close()) {
            event->ignore();
            return;
        }
    }
    // Saved while the commands' docks are still there to be described.
    QSettings settings = hostSettings();
    settings.setValue(QLatin1String(kGeometryKey), saveGeometry());
    settings.setValue(QLatin1String(kStateKey), saveState(kStateVersion));
    // The commands go while the window and its docks still exist.
    m_actions.clear();
    m_commands.clear();
    QMainWindow::closeEvent(event);
}
