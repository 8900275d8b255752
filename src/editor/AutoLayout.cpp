#include "editor/AutoLayout.h"

#include "editor/AutoLayoutCommand.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "engine/SequenceControl.h"

#include <QCoreApplication>
#include <QGraphicsItem>
#include <QAction>
#include <QHash>
#include <QMessageBox>

#include <gvc.h>

namespace Plugin {

namespace {

// Gaps between boxes, in scene units (the layout library counts 72 to the inch).
constexpr double kLayerGap = 60;
constexpr double kRowGap = 24;

// The library takes non-const strings and copies them.
char* Text(const char* text) { return const_cast<char*>(text); }

// What the library reports while it works, in place of its printing to stderr.
QString* g_libraryErrors = nullptr;
int CollectError(char* message)
{
    if (g_libraryErrors && message)
        *g_libraryErrors += QString::fromLocal8Bit(message);
    return 0;
}

} // namespace

QVector<QPointF> LayOutLeftToRight(const LayoutGraph& graph, QString* error)
{
    QVector<QPointF> centres;
    if (graph.sizes.isEmpty())
        return centres;
    QString errors;
    g_libraryErrors = &errors;
    const agusererrf previous = agseterrf(CollectError);

    // One context for the process: making one loads the library's plugins, and
    // freeing it does not give all of that back.
    static GVC_t* const context = gvContext();
    Agraph_t* g = agopen(Text("model"), Agdirected, nullptr);
    agattr(g, AGRAPH, Text("rankdir"), Text("LR"));
    agattr(g, AGRAPH, Text("ranksep"), QByteArray::number(kLayerGap / 72.0).data());
    agattr(g, AGRAPH, Text("nodesep"), QByteArray::number(kRowGap / 72.0).data());
    // Arrows are straight lines between their ends: no routes to compute.
    agattr(g, AGRAPH, Text("splines"), Text("none"));
    agattr(g, AGNODE, Text("shape"), Text("box"));
    agattr(g, AGNODE, Text("fixedsize"), Text("true"));
    agattr(g, AGNODE, Text("label"), Text(""));
    Agsym_t* width = agattr(g, AGNODE, Text("width"), Text("1"));
    Agsym_t* height = agattr(g, AGNODE, Text("height"), Text("1"));

    QVector<Agnode_t*> nodes;
    nodes.reserve(graph.sizes.size());
    for (int i = 0; i < graph.sizes.size(); ++i) {
        Agnode_t* node = agnode(g, QByteArray("n").append(QByteArray::number(i)).data(), 1);
        agxset(node, width, QByteArray::number(qMax(1.0, graph.sizes[i].width()) / 72.0, 'g', 10).data());
        agxset(node, height, QByteArray::number(qMax(1.0, graph.sizes[i].height()) / 72.0, 'g', 10).data());
        nodes.append(node);
    }
    for (const QPair<int, int>& link : graph.links)
        if (link.first != link.second && link.first >= 0 && link.second >= 0 && link.first < nodes.size() &&
            link.second < nodes.size())
            agedge(g, nodes[link.first], nodes[link.second], nullptr, 1);

    if (gvLayout(context, g, "dot") == 0) {
        // The library's y runs upwards; the scene's downwards.
        const boxf box = GD_bb(g);
        for (Agnode_t* node : nodes)
            centres.append(QPointF(ND_coord(node).x - box.LL.x, box.UR.y - ND_coord(node).y));
        gvFreeLayout(context, g);
    } else if (error) {
        *error = QCoreApplication::translate("AutoLayoutCommand", "The layout library failed: %1")
                     .arg(errors.trimmed().isEmpty() ? QStringLiteral("no dot layout") : errors.trimmed());
    }
    agclose(g);
    agseterrf(previous);
    g_libraryErrors = nullptr;
    return centres;
}

bool AutoLayoutModel(ModelControler* window, QString* error)
{
    APCModel* model = window->GetDocument();
    QVector<QGraphicsItem*> items;
    QHash<QString, int> index;
    LayoutGraph graph;
    QList<APCObject*> objects;
    for (APCProcess* process : model->GetProcesses())
        objects.append(process);
    for (APCVar* var : model->GetVars())
        objects.append(var);
    for (APCObject* object : objects) {
        QGraphicsItem* item = window->FindItem(object);
        // Two objects sharing an id are one node to the arrows; the first stands for both.
        if (!item || index.contains(object->GetName()))
            continue;
        index.insert(object->GetName(), items.size());
        items.append(item);
        graph.sizes.append(item->sceneBoundingRect().size());
    }
    for (APCArrow* arrow : model->GetArrows())
        graph.links.append(qMakePair(index.value(arrow->GetTail(), -1), index.value(arrow->GetHead(), -1)));
    if (items.isEmpty())
        return true;
    const QVector<QPointF> centres = LayOutLeftToRight(graph, error);
    if (centres.size() != items.size())
        return false;

    QRectF before;
    for (QGraphicsItem* item : qAsConst(items))
        before |= item->sceneBoundingRect();
    for (int i = 0; i < items.size(); ++i) {
        QGraphicsItem* item = items[i];
        // An item's origin need not be the centre of its shape (an iterator's polygon).
        const QPointF offset = item->sceneBoundingRect().center() - item->pos();
        item->setPos(before.topLeft() + centres[i] - offset);
    }
    // Each move wrote back the place the item had before it, as a drag does; the
    // model is to keep where the items are now.
    for (QGraphicsItem* item : qAsConst(items))
        if (auto* base = dynamic_cast<GraphicsItemBase*>(item))
            base->CommitGeometry();
    return true;
}

bool AutoLayoutCommand::IsEnable()
{
    return !m_controler->IsReadOnly() && m_controler->GetSequenceControl()->GetState() == SequenceControl::Idle;
}

void AutoLayoutCommand::OnClick()
{
    // The action may still be enabled from the last tick.
    if (!IsEnable())
        return;
    QString error;
    m_controler->BeginEdit(m_action ? m_action->text() : QString());
    const bool placed = AutoLayoutModel(m_controler, &error);
    m_controler->EndEdit();
    if (!placed)
        QMessageBox::warning(m_controler, QCoreApplication::translate("AutoLayoutCommand", "Auto Layout"), error);
}

} // namespace Plugin
