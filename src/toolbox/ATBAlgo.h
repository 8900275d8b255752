#pragma once

#include "toolbox/ATBFile.h"

namespace Plugin {

// An algorithm of the host's catalogue; it is only dragged onto a model.
class ATBAlgo : public ATBFile
{
public:
    ATBAlgo() : ATBFile(ATB_Algo) {}

    QString GetMetadata() const { return m_metadata; }
    // Also sets the file to the algorithm's description file beside the
    // installation, an absolute path that nothing opens and nothing writes.
    void SetMetadata(const QString& metadata);

private:
    QString m_metadata;
};

} // namespace Plugin
