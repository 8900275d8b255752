#include "editor/ModelControler.h"

#include "editor/GraphicsItemBase.h"
#include "editor/GraphicsItemFactory.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "editor/ModelView.h"
#include "engine/SequenceControl.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

#include <QDockWidget>
#include <QGraphicsItem>

namespace Plugin {

ModelControler::ModelControler(const QString& path, bool readOnly, QWidget* parent)
    : QMainWindow(parent),
      m_readOnly(readOnly),
      m_filePath(path),
      m_document(new APCModel),
      m_control(new SequenceControl),
      m_scene(new ModelScene(this))
{
    connect(m_scene, SIGNAL(SceneMouseMove(QGraphicsSceneMouseEvent*)), this,
            SLOT(OnSceneMouseMove(QGraphicsSceneMouseEvent*)));
    connect(this, SIGNAL(APCObjectChanged(APCObject*, enAPCOperator)), this,
            SLOT(OnAPCObjectChanged(APCObject*, enAPCOperator)));
    m_view = new ModelView(m_scene, this);
    m_view->setAcceptDrops(true);
    setCentralWidget(m_view);
    LoadModel();
    if (readOnly)
        m_scene->SetEditable(false);
}

ModelControler::~ModelControler()
{
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

GraphicsItemBase* ModelControler::FindItemBase(APCObject* object)
{
    if (!object)
        return nullptr;
    const QString id = object->GetName();
    for (QGraphicsItem* item : m_scene->GetItems()) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        if (base && base->GetObject() && base->GetObject()->GetName() == id)
            return base;
    }
    return nullptr;
}

QGraphicsItem* ModelControler::FindItem(APCObject* object)
{
    return dynamic_cast<QGraphicsItem*>(FindItemBase(object));
}

void ModelControler::ShowLog()
{
    if (m_logDock && m_logDock->isHidden())
        m_logDock->show();
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
        if (QGraphicsItem* item = FindItem(pObject))
            m_scene->RemoveItem(item);
        delete pObject; // where a removed object dies
        break;
    case APCOperator_Update:
        if (GraphicsItemBase* base = FindItemBase(pObject))
            base->RefreshEnds();
        break;
    }
    m_modified = true;
}

} // namespace Plugin
