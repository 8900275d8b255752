#include "model/IAPCExecute.h"

namespace Plugin {

void IAPCExecute::GetError(int& code, QString& message)
{
    std::lock_guard<std::mutex> lock(m_errorMutex);
    code = m_errorCode;
    message = m_errorMessage;
}

void IAPCExecute::SetError(int code, const QString& message)
{
    std::lock_guard<std::mutex> lock(m_errorMutex);
    m_errorCode = code;
    m_errorMessage = message;
}

bool IAPCExecute::IsSucceeded()
{
    std::lock_guard<std::mutex> lock(m_errorMutex);
    return m_succeeded;
}

void IAPCExecute::SetSucceeded(bool succeeded)
{
    std::lock_guard<std::mutex> lock(m_errorMutex);
    m_succeeded = succeeded;
}

QString IAPCExecute::GetDescription() { return QString(); }
bool IAPCExecute::Execute() { return false; }
void IAPCExecute::Cancel() {}

} // namespace Plugin
