#include "HostTask/IHostTask.h"

#include <QUuid>

namespace HostTask {

IHostTask::IHostTask() : m_id(QUuid::createUuid().toString()) {}

QString IHostTask::GetName() const { std::lock_guard<std::mutex> l(m_mutex); return m_name; }
void IHostTask::SetName(const QString& name) { std::lock_guard<std::mutex> l(m_mutex); m_name = name; }
QString IHostTask::GetDescription() const { std::lock_guard<std::mutex> l(m_mutex); return m_description; }
void IHostTask::SetDescription(const QString& d) { std::lock_guard<std::mutex> l(m_mutex); m_description = d; }

void IHostTask::GetErrorInfo(int& code, QString& message) const
{
    std::lock_guard<std::mutex> l(m_mutex);
    code = m_errorCode;
    message = m_errorMessage;
}

void IHostTask::SetErrorInfo(int code, const QString& message)
{
    std::lock_guard<std::mutex> l(m_mutex);
    m_errorCode = code;
    m_errorMessage = message;
}

} // namespace HostTask
