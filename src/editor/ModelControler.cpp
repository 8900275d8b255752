#include "editor/ModelControler.h"

#include "editor/APCConsoleLog.h"
#include "editor/AutoLayoutCommand.h"
#include "editor/ClusterExportCommand.h"
#include "editor/ConnectTool.h"
#include "editor/CopyCommand.h"
#include "editor/CutCommand.h"
#include "editor/DeleteCommand.h"
#include "editor/ExportPyCommand.h"
#include "editor/FullCommand.h"
#include "editor/GraphicsItemBase.h"
#include "editor/LogWidget.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelRecovery.h"
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
#include <QDir>
#include <QDockWidget>
#include <QGraphicsItem>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTabWidget>
#include <QShortcut>
#include <QTimer>
#include <QToolBar>
#include <QUndoCommand>
#include <QUndoStack>

namespace Plugin {

namespace {

// One step of a window's history: the model before and after one user action,
// as the saved forms of its objects. That makes every edit undoable alike, and
// the model after an undo saves byte for byte as it did before the edit; the
// texts an edit left alone are shared with the neighbouring steps.
class ModelEdit : public QUndoCommand
{
public:
    ModelEdit(ModelControler* window, const ModelSnapshot& before, const ModelSnapshot& after, const QString& text)
        : QUndoCommand(text), m_window(window), m_before(before), m_after(after)
    {
    }
    void undo() override { m_window->RestoreModel(m_before); }
    // The first redo is the push: the model already stands as after says.
    void redo() override
    {
        if (m_done)
            m_window->RestoreModel(m_after);
        m_done = true;
    }

private:
    ModelControler* m_window;
    ModelSnapshot m_before;
    ModelSnapshot m_after;
    bool m_done = false;
};

// Steps kept per window: enough for a working session, bounded for a large model.
constexpr int kHistoryLimit = 200;

} // namespace

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
    m_history = new QUndoStack(this);
    m_history->setUndoLimit(kHistoryLimit);
    BuildInterface();
    LoadModel();
    m_current = m_document->Snapshot();

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

    if (!m_readOnly && !m_filePath.isEmpty()) {
        m_recovery = std::make_unique<ModelRecovery>(m_document, m_filePath);
        OfferRecovery();
        connect(m_history, &QUndoStack::indexChanged, this, [this] {
            if (m_recovery)
                m_recovery->Changed();
        });
    }
}

void ModelControler::OfferRecovery()
{
    ModelSnapshot copy;
    if (!m_recovery->LeftCopy(&copy))
        return;
    const QString text = QCoreApplication::translate("ModelControler",
                                                     "Changes to %1 made up to %2 never reached the file.\n\n"
                                                     "Open the model with those changes? Undo takes them back; No throws them away.")
                             .arg(QDir::toNativeSeparators(QDir::cleanPath(m_filePath)), m_recovery->WrittenAt());
    if (!RecoveryCopy::AskToTakeUp(this, text)) {
        m_recovery->DropLeftCopy();
        return;
    }
    BeginEdit(QCoreApplication::translate("ModelControler", "Recover changes"));
    RestoreModel(copy);
    EndEdit();
    m_modified = true;
}

bool ModelControler::SaveModel()
{
    const bool saved = m_document->SaveFile(m_filePath);
    if (saved && m_recovery)
        m_recovery->MarkSaved();
    return saved;
}

ModelControler::~ModelControler()
{
    // Its last word, while the document still stands.
    m_recovery.reset();
    // The history clears itself as it goes and would tell the actions about it.
    m_history->disconnect();
    delete m_history;
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
    ShowDocument();
}

void ModelControler::ShowDocument()
{
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

void ModelControler::SetModified(bool modified)
{
    m_modified = modified;
    if (!modified)
        m_history->setClean();
}

void ModelControler::BeginEdit(const QString& text)
{
    if (m_editDepth++ > 0 || m_readOnly)
        return;
    m_editText = text;
    m_beforeEdit = m_document->Snapshot();
    m_beforeEdit.ShareWith(m_current);
}

void ModelControler::NameEdit(const QString& text)
{
    if (m_editDepth > 0)
        m_editText = text;
}

void ModelControler::EndEdit()
{
    if (m_editDepth == 0 || --m_editDepth > 0 || m_readOnly)
        return;
    ModelSnapshot after = m_document->Snapshot();
    const ModelSnapshot before = m_beforeEdit;
    m_beforeEdit = ModelSnapshot();
    if (after == before)
        return;
    after.ShareWith(before);
    m_current = after;
    m_history->push(new ModelEdit(this, before, after, m_editText));
}

bool ModelControler::CanWalkHistory() const
{
    return !m_readOnly && m_editDepth == 0 && m_control->GetState() == SequenceControl::Idle;
}

void ModelControler::RestoreModel(const ModelSnapshot& snapshot)
{
    if (m_currentTool)
        m_currentTool->Deactivate();
    QList<APCObject*> removed, added;
    m_document->Restore(snapshot, m_current, &removed, &added);
    m_current = snapshot;
    for (APCObject* object : removed) {
        // The items go the way of removed objects' items: tools may still hold them.
        if (QGraphicsItem* item = dynamic_cast<QGraphicsItem*>(m_scene->FindItemOf(object))) {
            m_scene->RemoveItem(item);
            m_removedItems.append(item);
        }
        delete object;
    }
    for (APCObject* object : added)
        if (QGraphicsItem* item = GraphicsItemFactory::Instance()->CreateItem(object, this))
            m_scene->AddItem(item);
    // An arrow whose end was remade finds the end's new item.
    for (APCArrow* arrow : m_document->GetArrows())
        if (GraphicsItemBase* item = m_scene->FindItemOf(arrow))
            item->RefreshEnds();
    if (m_currentTool)
        m_currentTool->OnClick(); // the new items take the tool's flags
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
        {new ClusterExportCommand, QT_TRANSLATE_NOOP("ModelControler", "Export for a cluster..."), QT_TRANSLATE_NOOP("ModelControler", "Export the rounds as a Snakemake workflow"), ":/res/Model_ExportPy.png", nullptr, false, false},
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
        if (dynamic_cast<PrintCommand*>(row.command) || dynamic_cast<ClusterExportCommand*>(row.command))
            modelMenu->addAction(row.command->GetAction());
        else if (dynamic_cast<AutoLayoutCommand*>(row.command))
            viewMenu->addAction(row.command->GetAction());
    }
    m_currentTool = select;
    select->OnClick();

    // The history's commands and Cut come after the Edit menu's own entries.
    QAction* undo = nullptr;
    QAction* redo = nullptr;
    ModelCommand* cutCommand = nullptr;
    for (const Row& row : rows) {
        if (dynamic_cast<UndoCommand*>(row.command))
            undo = row.command->GetAction();
        else if (dynamic_cast<RedoCommand*>(row.command))
            redo = row.command->GetAction();
        else if (dynamic_cast<CutCommand*>(row.command))
            cutCommand = row.command;
    }
    QAction* cut = cutCommand->GetAction();
    connect(m_scene, &QGraphicsScene::selectionChanged, cut, [=] { cut->setEnabled(cutCommand->IsEnable()); });
    undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    // Set here: the platform's own redo key differs between systems.
    redo->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    cut->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_X));
    editMenu->addAction(undo);
    editMenu->addAction(redo);
    editMenu->addAction(cut);
    const auto name = [](QAction* action, const char* word, const QString& edit) {
        const QString plain = QCoreApplication::translate("ModelControler", word);
        action->setText(edit.isEmpty() ? plain : plain + QLatin1Char(' ') + edit);
    };
    connect(m_history, &QUndoStack::undoTextChanged, undo, [=](const QString& edit) { name(undo, "Undo", edit); });
    connect(m_history, &QUndoStack::redoTextChanged, redo, [=](const QString& edit) { name(redo, "Redo", edit); });
    // At once rather than at the next tick, so that a key right after an edit works.
    const auto refresh = [=] {
        undo->setEnabled(CanWalkHistory() && m_history->canUndo());
        redo->setEnabled(CanWalkHistory() && m_history->canRedo());
        cut->setEnabled(cutCommand->IsEnable());
    };
    connect(m_history, &QUndoStack::indexChanged, this, refresh);
    refresh();
    AddShortcuts(editMenu);
    manager->StartTimer(500);
}

void ModelControler::AddShortcuts(QMenu* editMenu)
{
    ModelCommandManager* manager = ModelCommandManager::Instance();
    QAction* selectAll = new QAction(QCoreApplication::translate("ModelControler", "Select All"), this);
    selectAll->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    connect(selectAll, &QAction::triggered, this, [this] {
        for (QGraphicsItem* item : m_scene->GetItems())
            if (item->flags() & QGraphicsItem::ItemIsSelectable)
                item->setSelected(true);
    });
    editMenu->addAction(selectAll);

    // Save and Escape act through their commands, whose own actions keep no key.
    auto* save = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this);
    connect(save, &QShortcut::activated, this, [this, manager] {
        for (QAction* action : findChildren<QAction*>())
            if (auto* command = dynamic_cast<SaveCommand*>(manager->FindCommand(action)))
                if (command->IsEnable())
                    action->trigger();
    });
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, [this, manager] {
        for (QAction* action : findChildren<QAction*>())
            if (dynamic_cast<SelectTool*>(manager->FindCommand(action)))
                action->trigger();
    });
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
        if (m_recovery)
            m_recovery->Closed();
        event->accept();
        return;
    }
    if (m_readOnly)
        m_modified = false;
    if (m_modified) {
        const auto answer = QMessageBox::question(this, QCoreApplication::translate("ModelControler", "quit"), QCoreApplication::translate("ModelControler", "Save Edited Contents?"),
                                                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        if (answer == QMessageBox::Yes) {
            SaveModel();
            m_modified = false;
        } else if (answer == QMessageBox::No) {
            if (m_recovery)
                m_recovery->Discard();
        } else {
            event->ignore();
            return;
        }
    }
    if (m_recovery)
        m_recovery->Closed();
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
    if (m_recovery)
        m_recovery->Changed();
}

} // namespace Plugin
