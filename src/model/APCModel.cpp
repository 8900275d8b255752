#include "model/APCModel.h"

#include "model/APCArrow.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "model/VarReference.h"

#include <QThread>

#include <vector>

namespace Plugin {

namespace {

const QString kProcess = QStringLiteral("process");
const QString kVar = QStringLiteral("var");

bool isRequired(const APCParameter& p)
{
    return !p.isOptional && p.defaultValue.isEmpty();
}

bool isIterator(const APCProcess* process)
{
    return process && APCProcessFactory::Instance()->IsIterator(process->GetClass());
}

} // namespace

APCModel::~APCModel()
{
    qDeleteAll(m_processes);
    qDeleteAll(m_vars);
    qDeleteAll(m_arrows);
}

void APCModel::InvalidateIndex()
{
    std::lock_guard<std::mutex> lock(m_indexMutex);
    ++m_generation;
}

template <class T>
T* APCModel::Lookup(const QList<T*>& list, QHash<QString, int>& index, const QString& id) const
{
    quint64& indexGeneration = std::is_same<T, APCVar>::value ? m_varIndexGeneration : m_processIndexGeneration;
    int& indexed = std::is_same<T, APCVar>::value ? m_varIndexed : m_processIndexed;
    std::lock_guard<std::mutex> lock(m_indexMutex);
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (attempt > 0 || indexGeneration != m_generation || indexed != list.size()) {
            index.clear();
            index.reserve(list.size());
            // insert() keeps the last holder; walk backwards so the first one wins.
            for (int i = list.size() - 1; i >= 0; --i)
                index.insert(list.at(i)->GetName(), i);
            indexGeneration = m_generation;
            indexed = list.size();
        }
        auto it = index.constFind(id);
        if (it == index.constEnd())
            return nullptr;
        const int pos = it.value();
        if (pos < list.size() && list.at(pos)->GetName() == id)
            return list.at(pos);
    }
    return nullptr;
}

APCProcess* APCModel::FindProcess(const QString& id) const
{
    return Lookup(m_processes, m_processIndex, id);
}

APCVar* APCModel::FindVar(const QString& id) const
{
    return Lookup(m_vars, m_varIndex, id);
}

QList<APCArrow*> APCModel::ArrowsOfProcess(APCObject* process, const QString& paramName) const
{
    QList<APCArrow*> result;
    if (!process)
        return result;
    const QString id = process->GetName();
    for (APCArrow* a : m_arrows) {
        const bool atHead = a->GetHeadType() == kProcess && a->GetHead() == id;
        const bool atTail = a->GetTailType() == kProcess && a->GetTail() == id;
        if (!atHead && !atTail)
            continue;
        if (!paramName.isEmpty() && a->GetHeadParam() != paramName && a->GetTailParam() != paramName)
            continue;
        result.append(a);
    }
    return result;
}

QList<APCArrow*> APCModel::ArrowsOfVar(APCObject* var) const
{
    QList<APCArrow*> result;
    if (!var)
        return result;
    const QString id = var->GetName();
    for (APCArrow* a : m_arrows)
        if ((a->GetHeadType() == kVar && a->GetHead() == id) || (a->GetTailType() == kVar && a->GetTail() == id))
            result.append(a);
    return result;
}

QString APCModel::ObjectType(APCObject* object)
{
    if (dynamic_cast<APCProcess*>(object))
        return kProcess;
    if (dynamic_cast<APCVar*>(object))
        return kVar;
    return QString();
}

QSet<QString> APCModel::IteratorOutputIds() const
{
    QSet<QString> ids;
    for (APCArrow* a : m_arrows)
        if (a->GetHeadType() == kVar && a->GetTailType() == kProcess && isIterator(FindProcess(a->GetTail())))
            ids.insert(a->GetHead());
    return ids;
}

namespace {
// Installs a pass's iterator outputs on the model for the current thread.
class PassOutputs
{
public:
    PassOutputs(const QSet<QString>*& slot, Qt::HANDLE& thread, const QSet<QString>& ids)
        : m_slot(slot), m_thread(thread), m_ids(ids)
    {
        m_active = m_slot == nullptr;
        if (m_active) {
            m_slot = &m_ids;
            m_thread = QThread::currentThreadId();
        }
    }
    ~PassOutputs()
    {
        if (m_active) {
            m_slot = nullptr;
            m_thread = nullptr;
        }
    }

private:
    const QSet<QString>*& m_slot;
    Qt::HANDLE& m_thread;
    QSet<QString> m_ids;
    bool m_active = false;
};
} // namespace

bool APCModel::IsIteratorOutput(const QString& varId) const
{
    if (m_passOutputs && m_passThread == QThread::currentThreadId())
        return m_passOutputs->contains(varId);
    for (APCArrow* a : m_arrows) {
        const bool ofVar = (a->GetHeadType() == kVar && a->GetHead() == varId) ||
                           (a->GetTailType() == kVar && a->GetTail() == varId);
        if (ofVar && a->GetTailType() == kProcess && isIterator(FindProcess(a->GetTail())))
            return true;
    }
    return false;
}

QList<APCVar*> APCModel::GetFreeVars() const
{
    PassOutputs pass(m_passOutputs, m_passThread, IteratorOutputIds());
    QList<APCVar*> result;
    for (APCVar* v : m_vars)
        if (v->IsFree())
            result.append(static_cast<APCVar*>(v->Clone()));
    return result;
}

APCObject* APCModel::FindInvalidObject() const
{
    for (APCProcess* p : m_processes)
        if (!p->Check())
            return p;
    for (APCVar* v : m_vars)
        if (!v->Check())
            return v;
    for (APCArrow* a : m_arrows)
        if (!a->Check())
            return a;
    return nullptr;
}

void APCModel::SetArrowParameter(APCArrow* arrow, bool wire)
{
    QString processId, paramName, varId;
    if (arrow->GetHeadType() == kProcess && arrow->GetTailType() == kVar) {
        processId = arrow->GetHead();
        paramName = arrow->GetHeadParam();
        varId = arrow->GetTail();
    } else if (arrow->GetHeadType() == kVar && arrow->GetTailType() == kProcess) {
        processId = arrow->GetTail();
        paramName = arrow->GetTailParam();
        varId = arrow->GetHead();
    } else {
        return;
    }
    // An arrow naming a missing process changes nothing.
    APCProcess* process = FindProcess(processId);
    if (!process)
        return;
    for (APCParameter& p : process->GetParameters()) {
        if (p.name != paramName)
            continue;
        if (!wire) {
            p.value.clear();
            return;
        }
        p.value = VarReferenceTo(varId);
        const QString typeParam = p.typeParam;
        if (APCVar* var = FindVar(varId))
            var->SetTypeParam(typeParam);
        return;
    }
}

void APCModel::WireArrow(APCArrow* arrow) { SetArrowParameter(arrow, true); }
void APCModel::UnwireArrow(APCArrow* arrow) { SetArrowParameter(arrow, false); }

void APCModel::DetachArrow(APCArrow* arrow)
{
    m_arrows.removeOne(arrow);
    UnwireArrow(arrow);
    arrowRemoved(arrow);
}

APCArrow* APCModel::CreateParameterArrow(APCProcess* process, const QString& paramName, int direction, APCVar* var)
{
    auto* arrow = new APCArrow;
    arrow->SetPainter(QString());
    if (direction == 1) {
        arrow->SetHead(var->GetName());
        arrow->SetHeadType(ObjectType(var));
        arrow->SetTail(process->GetName());
        arrow->SetTailType(ObjectType(process));
        arrow->SetTailParam(paramName);
    } else {
        arrow->SetHead(process->GetName());
        arrow->SetHeadType(ObjectType(process));
        arrow->SetHeadParam(paramName);
        arrow->SetTail(var->GetName());
        arrow->SetTailType(ObjectType(var));
    }
    arrow->SetModel(this);
    m_arrows.append(arrow);
    WireArrow(arrow);
    arrowAdded(arrow);
    return arrow;
}

bool APCModel::AddProcess(APCProcess* process)
{
    process->SetModel(this);
    m_processes.append(process);
    InvalidateIndex();
    processAdded(process);

    int required = 0;
    for (const APCParameter& p : process->GetParameters())
        if (isRequired(p))
            ++required;
    double offset = -(required / 2) * 90;

    // Index-based: wiring writes into the parameter list while we walk it.
    for (int i = 0; i < process->GetParameters().size(); ++i) {
        const APCParameter p = process->GetParameters().at(i);
        if (!isRequired(p))
            continue;
        APCVar* var = APCVarFactory::Instance()->Create(p.type);
        if (!var)
            continue;
        var->SetClass(p.type);
        var->SetPos(QPointF(process->GetPos().x() + offset, process->GetPos().y() + 150.0));
        var->SetPainter(QString());
        var->SetDescription(p.description);
        var->SetConstant(false);
        var->SetTypeParam(p.typeParam);
        offset += 90;
        var->SetModel(this);
        m_vars.append(var);
        InvalidateIndex();
        varAdded(var);
        process->GetParameters()[i].value = VarReferenceTo(var->GetName());
        CreateParameterArrow(process, p.name, p.direction, var);
    }
    return true;
}

bool APCModel::AddVar(APCVar* var)
{
    var->SetModel(this);
    m_vars.append(var);
    InvalidateIndex();
    varAdded(var);
    return true;
}

bool APCModel::AddArrow(APCArrow* arrow)
{
    arrow->SetModel(this);
    m_arrows.append(arrow);
    WireArrow(arrow);
    arrowAdded(arrow);
    return true;
}

bool APCModel::RemoveProcess(APCProcess* process)
{
    for (APCArrow* a : ArrowsOfProcess(process, QString()))
        DetachArrow(a);
    m_processes.removeOne(process);
    InvalidateIndex();
    processRemoved(process);
    return true;
}

bool APCModel::RemoveVar(APCVar* var)
{
    for (APCArrow* a : ArrowsOfVar(var))
        DetachArrow(a);
    const QString id = var->GetName();
    for (APCProcess* process : m_processes) {
        bool changed = false;
        for (APCParameter& p : process->GetParameters()) {
            if (p.value.contains(id)) {
                p.value.clear();
                changed = true;
            }
        }
        if (changed)
            processChanged(process);
    }
    m_vars.removeOne(var);
    InvalidateIndex();
    varRemoved(var);
    return true;
}

bool APCModel::RemoveArrow(APCArrow* arrow)
{
    DetachArrow(arrow);
    return true;
}

bool APCModel::ChangeArrow(APCArrow* before, APCArrow* after)
{
    UnwireArrow(before);
    WireArrow(after);
    arrowChanged(after);
    return true;
}

bool APCModel::NotifyVarChanged(APCVar* var)
{
    varChanged(var);
    return true;
}

bool APCModel::UpdateProcess(APCProcess* process)
{
    const QString processId = process->GetName();
    QList<APCParameter> params = process->GetParameters(); // private copy
    for (int i = 0; i < params.size(); ++i) {
        APCParameter& p = params[i];
        if (!isRequired(p))
            continue;
        // Stricter than a step's reading: a value counts here only when it also ends with "%".
        const bool isReference = IsVarReference(p.value) && p.value.endsWith(QLatin1Char('%'));
        if (!isReference) {
            for (APCArrow* a : ArrowsOfProcess(process, QString()))
                if (a->GetHeadParam() == p.name || a->GetTailParam() == p.name)
                    DetachArrow(a);
            continue;
        }
        const QString id = ReferencedVarId(p.value);
        if (APCVar* var = FindVar(id)) {
            bool found = false;
            for (APCArrow* a : m_arrows) {
                if (p.direction == 1 && a->GetTail() == processId && a->GetTailParam() == p.name) {
                    found = true;
                    if (a->GetHead() != var->GetName()) {
                        a->SetHead(var->GetName());
                        arrowChanged(a);
                    }
                } else if (p.direction != 1 && a->GetHead() == processId && a->GetHeadParam() == p.name) {
                    found = true;
                    if (a->GetTail() != var->GetName()) {
                        a->SetTail(var->GetName());
                        arrowChanged(a);
                    }
                }
            }
            if (!found)
                CreateParameterArrow(process, p.name, p.direction, var);
            continue;
        }
        // A reference to no var asks for a new one.
        APCVar* var = APCVarFactory::Instance()->Create(p.type);
        if (!var)
            continue;
        var->SetClass(p.type);
        var->SetPainter(QString());
        var->SetDescription(p.description);
        var->SetConstant(false);
        AddVar(var);
        p.value = VarReferenceTo(var->GetName());
        const QList<APCArrow*> arrows = ArrowsOfProcess(process, p.name);
        if (arrows.isEmpty()) {
            CreateParameterArrow(process, p.name, p.direction, var);
        } else {
            // Both ends are set to the var's id: the output arrow's process end too.
            for (APCArrow* a : arrows) {
                if (a->GetHeadParam() == p.name)
                    a->SetTail(var->GetName());
                if (a->GetTailParam() == p.name)
                    a->SetTail(var->GetName());
            }
        }
    }

    // Sweep arrows whose parameter is gone; restart after each removal.
    for (bool again = true; again;) {
        again = false;
        for (APCArrow* a : m_arrows) {
            const bool deadHead = a->GetHead() == processId && process->GetParameter(a->GetHeadParam()).name != a->GetHeadParam();
            const bool deadTail = !deadHead && a->GetTail() == processId &&
                                  process->GetParameter(a->GetTailParam()).name != a->GetTailParam();
            if (deadHead || deadTail) {
                DetachArrow(a);
                again = true;
                break;
            }
        }
    }
    processChanged(process);
    return true;
}

void APCModel::ResetVarValues()
{
    for (APCVar* v : m_vars)
        v->SetRunValue(QString());
}

bool APCModel::ResolveVarValues(const QList<APCVar*>& inputs)
{
    PassOutputs pass(m_passOutputs, m_passThread, IteratorOutputIds());
    QHash<QString, QString> given; // the last input of an id wins, as in a linear pass
    for (APCVar* in : inputs)
        given.insert(in->GetName(), in->GetValue());
    for (APCVar* v : m_vars) {
        if (!v->IsFree() || !v->GetRunValue().isEmpty())
            continue;
        auto it = given.constFind(v->GetName());
        if (it == given.constEnd())
            return false;
        v->SetRunValue(it.value());
    }

    // The fixed point: repeatedly resolve the first var in list order that can be
    // resolved. A var whose last attempt failed fails again, with the same effect,
    // until a var it names changes its run value, so only those are retried.
    const int count = m_vars.size();
    if (count < 1)
        return true;
    const std::vector<APCVar*> pending(m_vars.begin(), m_vars.end());
    std::vector<char> alive(count, 1), dirty(count, 1);
    QHash<QString, std::vector<int>> readers;
    for (int i = 0; i < count; ++i)
        if (!pending[i]->GetConstant())
            for (const QString& id : ReferencedIdsIn(pending[i]->GetFunExp()))
                readers[id].push_back(i);

    int left = count;
    int start = 0;
    for (;;) {
        int found = -1;
        int restart = count;
        for (int i = start; i < count; ++i) {
            if (!alive[i] || !dirty[i])
                continue;
            APCVar* v = pending[i];
            const QString before = v->GetRunValue();
            const bool ready = v->ResolveValue();
            dirty[i] = 0;
            if (v->GetRunValue() != before) {
                auto it = readers.constFind(v->GetName());
                if (it != readers.constEnd())
                    for (int r : it.value()) {
                        dirty[r] = 1;
                        restart = std::min(restart, r);
                    }
            }
            if (ready) {
                found = i;
                break;
            }
        }
        if (found < 0)
            return false;
        alive[found] = 0;
        if (--left < 1)
            return true;
        start = std::min(restart, found);
    }
}

} // namespace Plugin
