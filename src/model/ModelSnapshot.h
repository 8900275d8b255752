#pragma once

#include <QString>
#include <QVector>

namespace Plugin {

// A model as its objects' saved forms, one XML element text per object, in list
// order. Two snapshots of one model compare equal exactly when a save would
// write the same file; texts an edit left alone can be shared between them.
struct ModelSnapshot
{
    QVector<QString> processes;
    QVector<QString> vars;
    QVector<QString> arrows;

    bool operator==(const ModelSnapshot& other) const
    {
        return processes == other.processes && vars == other.vars && arrows == other.arrows;
    }
    bool operator!=(const ModelSnapshot& other) const { return !(*this == other); }
    // Makes each text equal to one of base's the same string as base's, so that
    // the two hold one copy of what did not change.
    void ShareWith(const ModelSnapshot& base);
};

} // namespace Plugin
