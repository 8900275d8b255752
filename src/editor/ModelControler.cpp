#include "editor/ModelControler.h"

#include "editor/APCConsoleLog.h"
#include "editor/AutoLayoutCommand.h"
#include "editor/ConnectTool.h"
#include "editor/CopyCommand.h"
#include "editor/CutCommand.h"
#include "editor/DeleteCommand.h"
#include "editor/ExportPyCommand.h"
#include "editor/FullCommand.h"
#include "editor/GraphicsItemBase.h"
#include "editor/LogWidget.h"
#include "editor/ModelCommandManager.h"
#include "editor/PanTool.h"
#include "editor/PasteCommand.h"
#include "editor/PauseCommand.h"
#include "editor/PrintCommand.h"
#include "editor/RedoCommand.h"
#include "editor/RunCommand.h"
#include "editor/SaveAsCommand.h"
#include "editor/SaveCommand.h"
#include "editor/SelectTool.h"
#include "editor/StopCommand.h"
#include "editor/UndoCommand.h"
#include "editor/ValidateCommand.h"
#include "editor/VarAddCommand.h"
#include "editor/ZoomFixedZoomInCommand.h"
#include "editor/ZoomFixedZoomOutCommand.h"
#include "editor/ZoomInTool.h"
#include "editor/ZoomOutTool.h"
#include "editor/ZoomToNativeResolutionCommand.h"
#include "engine/SequenceNode.h"
#include "editor/GraphicsItemFactory.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "editor/ModelView.h"
#include "engine/SequenceControl.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "model/SoftAssert.h"

#include <QCoreApplication>
#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QGraphicsItem>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>

namespace Plugin {

ModelControler::ModelControler(const QString& path, bool readOnly, QWidget* parent)
    : QMainWindow(parent),
      m_readOnly(readOnly),
      m_filePath(path),
      m_document(new APCModel),
      m_control(new SequenceControl),
      m_scene(new ModelScene(this))
{
    MB_CHECK(connect(m_scene, SIGNAL(SceneMouseMove(QGraphicsSceneMouseEvent*)), this,
                     SLOT(OnSceneMouseMove(QGraphicsSceneMouseEvent*))));
    MB_CHECK(connect(this, SIGNAL(APCObjectChanged(APCObject*, enAPCOperator)), this,
                     SLOT(OnAPCObjectChanged(APCObject*, enAPCOperator))));
    m_view = new ModelView(m_scene, this);
    m_view->setAcceptDrops(true);
    setCentralWidget(m_view);
    BuildInterface();
    LoadModel();

    // Connected after the load, which emits nothing: a fresh window is clean.
    auto changed = [this](enAPCOperator opt) {
        return [this, opt](APCObject* object) { emit APCObjectChanged(object, opt); };
    };
    m_connections.emplace_back(m_document->processAdded.connect(changed(APCOperator_Add)));
    m_connections.emplace_back(m_document->varAdded.connect(changed(APCOperator_Add)));
    m_connections.emplace_back(m_document->arrowAdded.connect(changed(APCOperator_Add)));
    m_connections.emplace_back(m_document->processChanged.connect(changed(APCOperator_Update)));
    m_connections.emplace_back(m_document->varChanged.connect(changed(APCOperator_Update)));
    m_connections.emplace_back(m_document->arrowChanged.connect(changed(APCOperator_Update)));
    m_connections.emplace_back(m_document->processRemoved.connect(changed(APCOperator_Delete)));
    m_connections.emplace_back(m_document->varRemoved.connect(changed(APCOperator_Delete)));
    m_connections.emplace_back(m_document->arrowRemoved.connect(changed(APCOperator_Delete)));

    m_control->SetLog(new APCConsoleLog(this));
    // Progress is reported from the step's pool thread: it is noted under a lock
    // and drawn on this thread by a timer, so no object crosses the threads.
    m_connections.emplace_back(m_control->NodeProgress.connect([this](SequenceNode* node, double value) {
        std::lock_guard<std::mutex> lock(m_progressMutex);
        m_pendingProgress.insert(node->GetProcess()->GetName(), value);
    }));
    m_progressTimer = new QTimer(this);
    m_progressTimer->setInterval(50);
    connect(m_progressTimer, &QTimer::timeout, this, [this] {
        QHash<QString, double> pending;
        {
            std::lock_guard<std::mutex> lock(m_progressMutex);
            pending.swap(m_pendingProgress);
        }
        for (auto it = pending.constBegin(); it != pending.constEnd(); ++it)
            if (GraphicsItemBase* item = FindItemBaseById(it.key()))
                item->SetProgress(it.value());
        // Ticks only while a run goes on; the next step's start wakes it again.
        if (pending.isEmpty() && m_control->GetState() == SequenceControl::Idle)
            m_progressTimer->stop();
    });
    m_connections.emplace_back(m_control->NodeStatus.connect([this](SequenceNode* node, int status) {
        if (!m_progressTimer->isActive())
            m_progressTimer->start();
        if (GraphicsItemBase* item = FindItemBase(node->GetProcess()))
            item->SetState(status);
    }));
    m_connections.emplace_back(m_control->NodeFinished.connect([](SequenceNode*) {}));

    setWindowTitle(QCoreApplication::translate("ModelControler", "Model Builder"));
    setUnifiedTitleAndToolBarOnMac(true);
    if (readOnly)
        m_scene->SetEditable(false);
    setWindowFlags(windowFlags());
}

ModelControler::~ModelControler()
{
    ModelCommandManager::Instance()->ForgetWindow(this);
    // A run still under way must not report into a window that is going.
    if (m_control->GetState() != 0)
        m_control->Stop();
    m_connections.clear();
    qDeleteAll(m_removedItems);
    delete m_view;
    delete m_scene;
    delete m_document;
    delete m_control;
}

void ModelControler::LoadModel()
{
    // A failed load leaves an empty canvas; the window opens all the same.
    if (!m_filePath.isEmpty())
        m_document->LoadFile(m_filePath);
    // Processes and vars first: an arrow's item looks for the items of its ends.
    QList<APCObject*> objects;
    for (APCProcess* p : m_document->GetProcesses())
        objects.append(p);
    for (APCVar* v : m_document->GetVars())
        objects.append(v);
    for (APCArrow* a : m_document->GetArrows())
        objects.append(a);
    for (APCObject* object : objects) {
        object->SetModel(m_document);
        if (QGraphicsItem* item = GraphicsItemFactory::Instance()->CreateItem(object, this))
            m_scene->AddItem(item);
    }
}

void ModelControler::SetCurrentTool(ModelTool* tool)
{
    // A switch in the middle of a drag: the old tool drops what it had under way.
    if (m_currentTool && m_currentTool != tool)
        m_currentTool->Deactivate();
    m_currentTool = tool;
    if (tool)
        tool->OnClick();
}

bool ModelControler::AddObject(APCObject* object)
{
    if (auto* process = dynamic_cast<APCProcess*>(object))
        return m_document->AddProcess(process);
    if (auto* var = dynamic_cast<APCVar*>(object))
        return m_document->AddVar(var);
    if (auto* arrow = dynamic_cast<APCArrow*>(object))
        return m_document->AddArrow(arrow);
    return false;
}

void ModelControler::RemoveObject(APCObject* object)
{
    if (auto* process = dynamic_cast<APCProcess*>(object))
        m_document->RemoveProcess(process);
    else if (auto* var = dynamic_cast<APCVar*>(object))
        m_document->RemoveVar(var);
    else if (auto* arrow = dynamic_cast<APCArrow*>(object))
        m_document->RemoveArrow(arrow);
}

GraphicsItemBase* ModelControler::FindItemBase(APCObject* object) { return m_scene->FindItemOf(object); }

GraphicsItemBase* ModelControler::FindItemBaseById(const QString& id) { return m_scene->FindItemById(id); }

QGraphicsItem* ModelControler::FindItem(APCObject* object)
{
    return dynamic_cast<QGraphicsItem*>(FindItemBase(object));
}

void ModelControler::ShowLog()
{
    if (m_logDock && m_logDock->isHidden())
        m_logDock->show();
}

void ModelControler::AppendLog(const QString& text, int panel)
{
    auto* log = m_logTabs ? dynamic_cast<LogWidget*>(m_logTabs->widget(panel)) : nullptr;
    if (!log || panel < 0 || panel > 1)
        return;
    log->setText(log->toPlainText() + text);
    log->moveCursor(QTextCursor::End);
}

void ModelControler::BuildInterface()
{
    auto* output = new LogWidget;
    auto* errors = new LogWidget;
    output->setReadOnly(true);
    errors->setReadOnly(true);
    m_logTabs = new QTabWidget;
    m_logTabs->setTabPosition(QTabWidget::South);
    m_logTabs->insertTab(0, output, QCoreApplication::translate("ModelControler", "Output"));
    m_logTabs->insertTab(1, errors, QCoreApplication::translate("ModelControler", "Error"));
    m_logDock = new QDockWidget(QCoreApplication::translate("ModelControler", "Log"), this);
    m_logDock->setWidget(m_logTabs);
    m_logDock->setAllowedAreas(Qt::AllDockWidgetAreas);
    addDockWidget(Qt::BottomDockWidgetArea, m_logDock);
    m_logDock->hide(); // until a run shows it

    ModelCommandManager* manager = ModelCommandManager::Instance();
    QToolBar* toolBar = addToolBar(QCoreApplication::translate("ModelControler", "ToolBar"));
    QMenu* modelMenu = menuBar()->addMenu(QCoreApplication::translate("ModelControler", "Model"));
    QMenu* editMenu = menuBar()->addMenu(QCoreApplication::translate("ModelControler", "Edit"));
    QMenu* insertMenu = menuBar()->addMenu(QCoreApplication::translate("ModelControler", "Insert"));
    QMenu* viewMenu = menuBar()->addMenu(QCoreApplication::translate("ModelControler", "View"));

    struct Row
    {
        ModelCommand* command;
        const char* caption;
        const char* statusTip;
        const char* icon;
        QMenu* menu;
        bool onToolBar;
        bool separatorAfter;
    };
    SelectTool* select = new SelectTool;
    const Row rows[] = {
        {new SaveCommand, QT_TRANSLATE_NOOP("ModelControler", "Save"), QT_TRANSLATE_NOOP("ModelControler", "Save"), ":/res/Model_Save.png", modelMenu, true, false},
        {new SaveAsCommand, QT_TRANSLATE_NOOP("ModelControler", "Save As"), QT_TRANSLATE_NOOP("ModelControler", "Save As"), ":/res/Model_SaveAs.png", modelMenu, false, false},
        {new ExportPyCommand, QT_TRANSLATE_NOOP("ModelControler", "Export Python Script"), QT_TRANSLATE_NOOP("ModelControler", "Export Python Script"), ":/res/Model_ExportPy.png", nullptr, false, false},
        {new PrintCommand, QT_TRANSLATE_NOOP("ModelControler", "Print"), QT_TRANSLATE_NOOP("ModelControler", "Print entire model"), ":/res/Model_Print.png", nullptr, false, true},
        {new CutCommand, QT_TRANSLATE_NOOP("ModelControler", "Cut"), QT_TRANSLATE_NOOP("ModelControler", "Cut entire model"), ":/res/Model_Cut.png", nullptr, false, false},
        {new CopyCommand, QT_TRANSLATE_NOOP("ModelControler", "Copy"), QT_TRANSLATE_NOOP("ModelControler", "Copy entire model"), ":/res/Model_Copy.png", editMenu, true, false},
        {new PasteCommand, QT_TRANSLATE_NOOP("ModelControler", "Paste"), QT_TRANSLATE_NOOP("ModelControler", "Paste entire model"), ":/res/Model_Paste.png", editMenu, true, false},
        {new DeleteCommand, QT_TRANSLATE_NOOP("ModelControler", "Delete"), QT_TRANSLATE_NOOP("ModelControler", "Delete entire model"), ":/res/Model_Delete.png", editMenu, true, true},
        {new UndoCommand, QT_TRANSLATE_NOOP("ModelControler", "Undo"), QT_TRANSLATE_NOOP("ModelControler", "Undo"), ":/res/Model_Undo.png", nullptr, false, false},
        {new RedoCommand, QT_TRANSLATE_NOOP("ModelControler", "Redo"), QT_TRANSLATE_NOOP("ModelControler", "Redo"), ":/res/Model_Redo.png", nullptr, false, true},
        {new VarAddCommand, QT_TRANSLATE_NOOP("ModelControler", "Add Variable"), QT_TRANSLATE_NOOP("ModelControler", "Add Variable"), ":/res/Model_DataAdd.png", insertMenu, true, true},
        {new AutoLayoutCommand, QT_TRANSLATE_NOOP("ModelControler", "Auto Layout"), QT_TRANSLATE_NOOP("ModelControler", "AutoLayout entire model"), ":/res/Model_AutoLayout.png", nullptr, false, false},
        {new FullCommand, QT_TRANSLATE_NOOP("ModelControler", "Full Extent"), QT_TRANSLATE_NOOP("ModelControler", "Full entire model"), ":/res/Model_FullExtent.png", viewMenu, true, false},
        {new ZoomToNativeResolutionCommand, nullptr, nullptr, ":/res/Model_ZoomToNativeResolution.png", viewMenu, true, false},
        {new ZoomFixedZoomInCommand, QT_TRANSLATE_NOOP("ModelControler", "Fixed Zoom In"), QT_TRANSLATE_NOOP("ModelControler", "ZoomFixedZoomIn entire model"), ":/res/Model_ZoomFixedZoomIn.png", viewMenu, true, false},
        {new ZoomFixedZoomOutCommand, QT_TRANSLATE_NOOP("ModelControler", "Fixed Zoom Out"), QT_TRANSLATE_NOOP("ModelControler", "ZoomFixedZoomOut entire model"), ":/res/Model_ZoomFixedZoomOut.png", viewMenu, true, true},
        {new ZoomInTool, QT_TRANSLATE_NOOP("ModelControler", "Zoom In"), QT_TRANSLATE_NOOP("ModelControler", "ZoomInTool entire model"), ":/res/Model_ZoomInTool.png", nullptr, true, false},
        {new ZoomOutTool, QT_TRANSLATE_NOOP("ModelControler", "Zoom Out"), QT_TRANSLATE_NOOP("ModelControler", "ZoomOutTool entire model"), ":/res/Model_ZoomOutTool.png", nullptr, true, false},
        {new PanTool, QT_TRANSLATE_NOOP("ModelControler", "Pan"), QT_TRANSLATE_NOOP("ModelControler", "PanTool entire model"), ":/res/Model_PanTool.png", nullptr, true, true},
        {select, QT_TRANSLATE_NOOP("ModelControler", "Select"), QT_TRANSLATE_NOOP("ModelControler", "SelectTool entire model"), ":/res/Model_SelectTool.png", nullptr, true, false},
        {new ConnectTool, QT_TRANSLATE_NOOP("ModelControler", "Connect"), QT_TRANSLATE_NOOP("ModelControler", "ConnectTool entire model"), ":/res/Model_ConnectTool.png", nullptr, true, true},
        {new ValidateCommand, QT_TRANSLATE_NOOP("ModelControler", "Validate Entire Model"), QT_TRANSLATE_NOOP("ModelControler", "ValidateModel entire model"), ":/res/Model_ValidateModel.png", modelMenu, true, false},
        {new RunCommand, QT_TRANSLATE_NOOP("ModelControler", "Run"), QT_TRANSLATE_NOOP("ModelControler", "Run entire model"), ":/res/Model_RunModel.png", modelMenu, true, false},
        {new PauseCommand, QT_TRANSLATE_NOOP("ModelControler", "Pause"), QT_TRANSLATE_NOOP("ModelControler", "Pause entire model"), ":/res/Model_PauseModel.png", modelMenu, true, false},
        {new StopCommand, QT_TRANSLATE_NOOP("ModelControler", "Stop"), QT_TRANSLATE_NOOP("ModelControler", "Stop entire model"), ":/res/Model_StopModel.png", modelMenu, true, false},
    };
    for (const Row& row : rows) {
        // "1:1" is the same in every language.
        const QString caption = row.caption ? QCoreApplication::translate("ModelControler", row.caption) : QStringLiteral("1:1");
        const QString tip = row.statusTip ? QCoreApplication::translate("ModelControler", row.statusTip) : QStringLiteral("1:1");
        auto* action = new QAction(QIcon(QLatin1String(row.icon)), caption, this);
        action->setStatusTip(tip);
        if (dynamic_cast<DeleteCommand*>(row.command))
            action->setShortcut(QKeySequence(QCoreApplication::translate("ModelControler", "Delete")));
        if (row.menu)
            row.menu->addAction(action);
        if (row.onToolBar)
            toolBar->addAction(action);
        if (row.separatorAfter)
            toolBar->addSeparator();
        row.command->SetAction(action);
        row.command->SetControler(this);
        manager->AddCommand(row.command);
    }
    // Entries wired after the table was laid down come after their menu's own.
    for (const Row& row : rows) {
        if (dynamic_cast<PrintCommand*>(row.command))
            modelMenu->addAction(row.command->GetAction());
        else if (dynamic_cast<AutoLayoutCommand*>(row.command))
            viewMenu->addAction(row.command->GetAction());
    }
    m_currentTool = select;
    select->OnClick();
    manager->StartTimer(500);
}

void ModelControler::closeEvent(QCloseEvent* event)
{
    if (m_control->GetState() == 1) {
        const auto answer = QMessageBox::question(this, QCoreApplication::translate("ModelControler", "quit?"), QCoreApplication::translate("ModelControler", "Whether or not to stop?"),
                                                  QMessageBox::Yes | QMessageBox::No);
        if (answer != QMessageBox::Yes) {
            event->ignore();
            return;
        }
        m_control->Stop();
        event->accept();
        return;
    }
    if (m_readOnly)
        m_modified = false;
    if (m_modified) {
        const auto answer = QMessageBox::question(this, QCoreApplication::translate("ModelControler", "quit"), QCoreApplication::translate("ModelControler", "Save Edited Contents?"),
                                                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        if (answer == QMessageBox::Yes) {
            m_document->SaveFile(m_filePath);
            m_modified = false;
        } else if (answer != QMessageBox::No) {
            event->ignore();
            return;
        }
    }
    event->accept();
}

void ModelControler::OnSceneMouseMove(QGraphicsSceneMouseEvent*) {}

void ModelControler::OnAPCObjectChanged(APCObject* pObject, enAPCOperator opt)
{
    switch (opt) {
    case APCOperator_Add:
        if (QGraphicsItem* item = GraphicsItemFactory::Instance()->CreateItem(pObject, this))
            m_scene->AddItem(item);
        break;
    case APCOperator_Delete:
        if (QGraphicsItem* item = FindItem(pObject)) {
            m_scene->RemoveItem(item);
            m_removedItems.append(item); // off the canvas; freed with the window
        }
        delete pObject; // where a removed object dies
        break;
    case APCOperator_Update:
        if (GraphicsItemBase* base = FindItemBase(pObject)) {
            base->RefreshEnds();
            base->RefreshToolTip();
        }
        break;
    }
    m_modified = true;
}

} // namespace Plugin
