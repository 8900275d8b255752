#include "engine/APCModelFile.h"

#include "HostShell/EnvironmentSetting.h"
#include "engine/APCExecuteFactory.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QDomNode>
#include <QEventLoop>
#include <QFileInfo>
#include <QSet>
#include <QThreadStorage>
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

private:
    QString m_path;
    bool m_cycle = false;
};

} // namespace

APCModelFile::APCModelFile() = default;
APCModelFile::~APCModelFile() = default;

// The nested model dialog comes with the editor's dialogs.
APCObjectDialog* APCModelFile::CreateDialog(QWidget*) { return nullptr; }

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
    APCModel model;
    if (!model.LoadFile(m_modelPath))
        return false;
    const QList<APCVar*> free = model.GetFreeVars();
    QSet<QString> ids;
    for (APCVar* v : free)
        ids.insert(v->GetName());
    QList<APCParameter>& params = GetParameters();
    for (int i = params.size() - 1; i >= 0; --i)
        if (!ids.contains(params[i].name))
            params.removeAt(i);
    for (APCVar* v : free) {
        if (GetParameter(v->GetName()).name == v->GetName())
            continue;
        APCParameter p;
        p.name = v->GetName();
        p.type = v->GetClass();
        p.typeParam = v->GetTypeParam();
        p.description = v->GetDescription();
        p.direction = 0;
        for (APCArrow* a : model.ArrowsOfVar(v))
            if (a->GetHead() == v->GetName())
                p.direction = 1;
        p.value = QLatin1Char('%') + QUuid::createUuid().toString() + QLatin1Char('%');
        params.append(p);
    }
    qDeleteAll(free);
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
    control->SetName(QFileInfo(m_modelPath).baseName());
    if (model->FindInvalidObject() || model->GetProcesses().isEmpty())
        return false;

    const QList<APCVar*> free = model->GetFreeVars();
    std::unique_ptr<QList<APCVar*>, void (*)(QList<APCVar*>*)> freeOwner(
        new QList<APCVar*>(free), [](QList<APCVar*>* l) { qDeleteAll(*l); delete l; });
    if (free.size() != GetParameters().size())
        return false;
    APCModel* outer = GetModel();
    for (APCVar* clone : free) {
        const APCParameter p = GetParameter(clone->GetName());
        if (p.name != clone->GetName())
            return false;
        QString value = p.value;
        if (value.startsWith(QLatin1Char('%'))) {
            APCVar* var = outer ? outer->FindVar(value.remove(QLatin1Char('%'))) : nullptr;
            value = var ? var->GetRunValue() : QString();
        }
        clone->SetValue(value);
    }
    model->ResetVarValues();
    model->ResolveVarValues(free);
    freeOwner.reset();

    control->Build(model.get());
    m_nodeProgress.clear();
    boost::signals2::scoped_connection progress =
        control->NodeProgress.connect([this](SequenceNode* n, double v) { OnNestedProgress(n, v); });
    boost::signals2::scoped_connection status = control->NodeStatus.connect([](SequenceNode*, int) {});
    boost::signals2::scoped_connection finished =
        control->NodeFinished.connect([this](SequenceNode* n) { OnNestedFinished(n); });

    QEventLoop loop;
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        m_control = control.get();
        m_eventLoop = &loop;
        m_stopRequested = false;
    }
    control->Start();
    bool stopNow = false;
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        stopNow = m_stopRequested;
    }
    if (stopNow)
        control->Stop();
    if (control->GetState() != SequenceControl::Idle)
        loop.exec();
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        m_eventLoop = nullptr;
        m_control = nullptr;
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
    if (!m_eventLoop || !m_control)
        return;
    SequenceControl* control = m_control;
    // The nested control lives on the thread of the loop: stop it there.
    QMetaObject::invokeMethod(m_eventLoop, [control] { control->Stop(); }, Qt::QueuedConnection);
}

void APCModelFile::OnNestedProgress(SequenceNode* node, double value)
{
    double sum = 0;
    {
        std::lock_guard<std::mutex> lock(m_stopMutex);
        if (!m_control)
            return;
        const int n = m_control->GetNodes().size();
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
    if (m_eventLoop)
        m_eventLoop->quit();
}

} // namespace Plugin
