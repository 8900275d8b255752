#pragma once

#include <QString>

namespace Plugin {

// One finished step as the log reports it.
struct APCLogRecord
{
    QString name;        // the algorithm's name or the process's class
    QString description; // the process's description
    QString parameters;  // {"description":"value",...}
    bool succeeded = true;
    int errorCode = 0;
    QString errorMessage;
};

} // namespace Plugin
