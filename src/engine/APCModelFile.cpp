#include "engine/APCModelFile.h"

#include "HostShell/EnvironmentSetting.h"
#include "engine/APCExecuteFactory.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCArrow.h"
#include "model/APCDialogFactory.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/FreeVars.h"
#include "model/VarReference.h"

#include <QDomNode>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QUuid>

#include <memory>

namespace Plugin {

namespace {

// The model files being loaded or run on this thread, outermost first. A file
// that contains itself would otherwise recurse until the stack overflows.
QStringList& activeFiles()
{
    static thread_local QStringList files;
    return files;
}

QString canonical(const QString& path)
{
    const QString c = QFileInfo(path).canonicalFilePath();
    return c.isEmpty() ? QFileInfo(path).absoluteFilePath() : c;
}

// Marks a file as in use on this thread for the guard's lifetime.
class ActiveFile
{
public:
    explicit ActiveFile(const QString& path) : m_path(canonical(path))
    {
        m_cycle = activeFiles().contains(m_path);
        if (!m_cycle)
            activeFiles().append(m_path);
    }
    ~ActiveFile()
    {
        if (!m_cycle)
            activeFiles().removeLast();
    }
    bool IsCycle() const { return m_cycle; }
    const QString& Path() const { return m_path; }

private:
    QString m_path;
    bool m_cycle = false;
};

// What a nested model offers the step that runs it: one parameter per free var,
// in model order, without a value. Empty when the file does not load.
struct Offer
{
    bool loaded = false;
    QList<APCParameter> params;
};

Offer ReadOffer(const QString& path)
{
    Offer offer;
    APCModel model;
    if (!model.LoadFile(path))
        return offer;
    offer.loaded = true;
    const FreeVars free(model);
    for (APCVar* v : free.List()) {
        APCParameter p;
        p.name = v->GetName();
        p.type = v->GetClass();
        p.typeParam = v->GetTypeParam();
        p.description = v->GetDescription();
        p.direction = 0;
        for (APCArrow* a : model.ArrowsOfVar(v))
            if (a->GetHead() == v->GetName())
                p.direction = 1;
        offer.params.append(p);
    }
    return offer;
}

// A model whose steps run the same file many times over, or a tree of nested
// models, reads each file once per load instead of once per step or per path
// through the tree. Kept only while that load goes on, so every load sees the
// files as they are then.
QHash<QString, Offer>& offersOfThisLoad()
{
    static thread_local QHash<QString, Offer> offers;
    return offers;
}

Offer OfferOf(const QString& canonicalPath)
{
    if (!APCModel::Loading())
        return ReadOffer(canonicalPath);
    auto it = offersOfThisLoad().constFind(canonicalPath);
    if (it != offersOfThisLoad().constEnd())
        return *it;
    const Offer offer = ReadOffer(canonicalPath);
    if (offersOfThisLoad().isEmpty())
        APCModel::WhenLoadEnds([] { offersOfThisLoad().clear(); });
    offersOfThisLoad().insert(canonicalPath, offer);
    return offer;
}

} // namespace

APCModelFile::APCModelFile() = default;
APCModelFile::~APCModelFile() = default;

APCObjectDialog* APCModelFile::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::ModelFileDialog, this, parent);
}

APCObject* APCModelFile::Clone()
{
    auto* copy = new APCModelFile;
    copy->CopyProcessFrom(*this);
    copy->m_modelPath = m_modelPath;
    return copy;
}

void APCModelFile::ReadXml(const QDomNode& node)
{
    if (node.isNull())
        return;
    ReadProcessXml(node);
    SetProcessName(GetProcessName());
}

void APCModelFile::WriteXml(QXmlStreamWriter& writer, bool)
{
    WriteProcessElement(writer, true);
}

void APCModelFile::SetProcessName(const QString& name)
{
    StoreProcessName(name);
    m_modelPath = HostShell::EnvironmentSetting::Instance()->GetAppBinDir() + QStringLiteral("/../") + name;
    LoadParameters();
}

bool APCModelFile::SetModelPath(const QString& path)
{
    m_modelPath = path;
    return LoadParameters();
}

bool APCModelFile::LoadParameters()
{
    if (m_modelPath.isEmpty() || !QFileInfo::exists(m_modelPath))
        return false;
    ActiveFile guard(m_modelPath);
    if (guard.IsCycle())
        return false;
    const Offer offer = OfferOf(guard.Path());
    if (!offer.loaded)
        return false;
    QSet<QString> ids;
    for (const APCParameter& offered : offer.params)
        ids.insert(offered.name);
    QList<APCParameter>& params = GetParameters();
    for (int i = params.size() - 1; i >= 0; --i)
        if (!ids.contains(params[i].name))
            params.removeAt(i);
    for (const APCParameter& offered : offer.params) {
        if (GetParameter(offered.name).name == offered.name)
            continue;
        APCParameter p = offered;
        p.value = VarReferenceTo(QUuid::createUuid().toString());
        params.append(p);
    }
    return true;
}

bool APCModelFile::Check()
{
    for (const APCParameter& p : GetParameters())
        if (p.value.isEmpty() && !p.isOptional)
            return false;
    ActiveFile guard(m_modelPath);
    if (guard.IsCycle())
        return false;
    APCModel model;
    return model.LoadFile(m_modelPath) && !model.FindInvalidObject();
}

bool APCModelFile::Execute()
{
    ActiveFile guard(m_modelPath);
    if (guard.IsCycle()) {
        SetError(-3, QStringLiteral("The model %1 contains itself").arg(QFileInfo(m_modelPath).fileName()));
        return false;
    }
    auto control = std::make_unique<SequenceControl>();
    auto model = std::make_unique<APCModel>();
    if (!model->LoadFile(m_modelPath))
        return false;
    if (model->FindInvalidObject() || model->GetProcesses().isEmpty())
        return false;

    const FreeVars free(*model);
    if (free.Size() != GetParameters().size())
        return false;
    APCModel* outer = GetModel();
    for (APCVar* clone : free.List()) {
        const APCParameter p = GetParameter(clone->GetName());
        if (p.name != clone->GetName())
            return false;
        clone->SetValue(RunValueOf(outer, p.value));
    }

    m_nodeProgress.clear();
    boost::signals2::scoped_connection progress =
        control->NodeProgress.connect([this](SequenceNode* n, double v) { OnNestedProgress(n, v); });
    boost::signals2::scoped_connection status = control->NodeStatus.connect([](SequenceNode*, int) {});
    boost::signals2::scoped_connection finished =
        control->NodeFinished.connect([this](SequenceNode* n) { OnNestedFinished(n); });

    ModelRun run(*control, *model);
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        m_run = &run;
        m_nodeCount = 0;
        m_stopRequested = false;
    }
    const bool started = run.Start(free.List(), QFileInfo(m_modelPath).baseName());
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        m_nodeCount = control->GetNodes().size();
        if (!started)
            m_run = nullptr;
        else if (m_stopRequested)
            run.RequestStop();
    }
    if (!started) {
        // A graph that cannot run would wait for ever: fail the step with the reason.
        SetError(-4, control->GetBuildError());
        return false;
    }
    run.Wait();
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        m_run = nullptr;
        m_nodeCount = 0;
    }

    int code = 0;
    QString message;
    control->GetError(code, message);
    SetError(code, message);
    // Steps of a stopped nested run may still be working on the nested model on
    // other pool threads: let them end before the model goes.
    QList<IAPCExecute*> steps;
    for (SequenceNode* node : control->GetNodes())
        steps.append(node->GetExecutable());
    APCExecuteFactory::Instance()->WaitUntilIdle(steps);
    control.reset();
    return true;
}

void APCModelFile::RequestStop()
{
    std::lock_guard<std::mutex> lock(m_stopMutex);
    m_stopRequested = true;
    if (m_run)
        m_run->RequestStop(); // carried out on the nested run's own thread
}

void APCModelFile::OnNestedProgress(SequenceNode* node, double value)
{
    double sum = 0;
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        const int n = m_nodeCount;
        if (n == 0)
            return;
        m_nodeProgress[node] = value;
        for (double v : m_nodeProgress)
            sum += 100.0 / n * v / 100.0;
    }
    Progress(sum, QString(), nullptr);
}

void APCModelFile::OnNestedFinished(SequenceNode* node)
{
    if (node)
        return;
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        m_nodeProgress.clear();
    }
    Progress(100.0, QString(), nullptr);
}

} // namespace Plugin
