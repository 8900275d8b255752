#pragma once

#include "HostCore/CRef.h"

#include <QString>
#include <boost/any.hpp>
#include <boost/signals2.hpp>

#include <mutex>

namespace HostTask {

// An algorithm object the host can configure through a parameter slot and run.
class IHostTask : public HostCore::CRef
{
public:
    using ProgressSignal = boost::signals2::signal<int(double, const QString&, void*),
                                                   boost::signals2::optional_last_value<int>>;

    IHostTask();

    QString GetID() const { return m_id; }
    QString GetName() const;
    void SetName(const QString& name);
    QString GetDescription() const;
    void SetDescription(const QString& description);
    // The parameter slot; the caller and the task agree on the stored type.
    boost::any& GetParams() { return m_params; }
    void SetParams(const boost::any& params) { m_params = params; }
    void GetErrorInfo(int& code, QString& message) const;
    void SetErrorInfo(int code, const QString& message);

    // Runs the task on the calling thread; returns its result.
    virtual bool Execute() = 0;
    // Requests cancellation; the default does nothing.
    virtual void Cancel() {}

    // Percentage, text, user pointer. Emitted on the thread that runs Execute().
    ProgressSignal Progress;

protected:
    ~IHostTask() override = default;

private:
    mutable std::mutex m_mutex;
    QString m_id;
    QString m_name;
    QString m_description;
    boost::any m_params;
    int m_errorCode = 0;
    QString m_errorMessage;
};

} // namespace HostTask
