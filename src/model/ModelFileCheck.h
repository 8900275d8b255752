#pragma once

#include <QString>

namespace Plugin {

// Why a model file cannot be read, in words a user can act on. The model's own
// reader only says yes or no; this reads the file again the same way to find out.
class ModelFileCheck
{
public:
    // The reason APCModel::LoadFile refused path: no such file, not readable, not
    // XML (with line and column), or another root element than "Configuration".
    static QString Explain(const QString& path);
};

} // namespace Plugin
