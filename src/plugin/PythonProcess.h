#pragma once

#include <QObject>

class QProcess;

namespace Plugin {

// Relays a python process's output line by line. Kept for hosts that connect
// to it; nothing in the plug-in creates one.
class PythonProcess : public QObject
{
    Q_OBJECT
public:
    explicit PythonProcess(QProcess* process = nullptr, QObject* parent = nullptr)
        : QObject(parent), m_process(process)
    {
    }

signals:
    void get_message(QString strMessage);

public slots:
    void get_msg();

private:
    QProcess* m_process;
};

} // namespace Plugin
