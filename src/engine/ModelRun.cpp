#include "engine/ModelRun.h"

#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCModel.h"
#include "model/SoftAssert.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace Plugin {

void RunStopper::Stop()
{
    if (m_control.GetState() != SequenceControl::Idle)
        m_control.Stop();
}

ModelRun::ModelRun(SequenceControl& control, APCModel& model) : m_control(control), m_model(model), m_context(control)
{
    m_finishConnection = m_control.NodeFinished.connect([this](SequenceNode* node) {
        if (!node)
            m_finished = true;
    });
}

ModelRun::~ModelRun() = default;

bool ModelRun::Start(const QList<APCVar*>& inputs, const QString& name)
{
    MB_ASSERT(m_context.thread() == QThread::currentThread(), return false);
    m_finished = false;
    if (!Prepare(m_control, m_model, inputs, name))
        return false;
    m_control.Start();
    return true;
}

bool ModelRun::Prepare(SequenceControl& control, APCModel& model, const QList<APCVar*>& inputs, const QString& name)
{
    model.ResetVarValues();
    model.ResolveVarValues(inputs);
    control.SetName(name);
    control.Build(&model);
    return control.GetBuildError().isEmpty();
}

bool ModelRun::Wait(int timeoutMs)
{
    MB_ASSERT(m_context.thread() == QThread::currentThread(), return false);
    if (m_finished || m_control.GetState() == SequenceControl::Idle)
        return m_finished;
    QEventLoop loop;
    boost::signals2::scoped_connection quit = m_control.NodeFinished.connect([&loop](SequenceNode* node) {
        if (!node)
            loop.quit();
    });
    QTimer timeout;
    if (timeoutMs >= 0) {
        QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
        timeout.setSingleShot(true);
        timeout.start(timeoutMs);
    }
    loop.exec();
    return m_finished;
}

void ModelRun::RequestStop()
{
    QMetaObject::invokeMethod(&m_context, "Stop", Qt::QueuedConnection);
}

} // namespace Plugin
