#pragma once

#include "toolbox/ATBItem.h"

namespace Plugin {

// A row that stands for a file, stored relative to the application root (an
// algorithm's is the one exception, see ATBAlgo).
class ATBFile : public ATBItem
{
public:
    QString GetFile() const { return m_file; }
    void SetFile(const QString& file) { m_file = file; }

protected:
    explicit ATBFile(int type) : ATBItem(type) {}

    QString m_file;
};

} // namespace Plugin
