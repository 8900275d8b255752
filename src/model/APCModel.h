#pragma once

#include "model/ModelSnapshot.h"

#include <QHash>
#include <QSet>
#include <QList>
#include <QString>
#include <boost/signals2.hpp>

#include <functional>
#include <mutex>

class QDomNode;
class QPointF;

class QDomDocument;
class QDomElement;
class QXmlStreamWriter;

namespace Plugin {

class APCArrow;
class APCObject;
class APCProcess;
class APCVar;

// The document: owns the processes, vars and arrows of one model and keeps
// arrows, parameter values and vars consistent. No operation reports an error.
class APCModel
{
public:
    APCModel() = default;
    APCModel(const APCModel&) = delete;
    APCModel& operator=(const APCModel&) = delete;
    // Deletes all processes, then all vars, then all arrows.
    ~APCModel();

    // Listeners connect directly; every signal is emitted synchronously, once per
    // object, on the mutating thread. A ...Removed signal hands the object over:
    // the model no longer owns it, whether anyone listens or not. A model with no
    // window that removes objects keeps a RemovedObjectBin, or they leak.
    boost::signals2::signal<void(APCProcess*)> processAdded;
    boost::signals2::signal<void(APCProcess*)> processChanged;
    boost::signals2::signal<void(APCProcess*)> processRemoved;
    boost::signals2::signal<void(APCVar*)> varAdded;
    boost::signals2::signal<void(APCVar*)> varChanged;
    boost::signals2::signal<void(APCVar*)> varRemoved;
    boost::signals2::signal<void(APCArrow*)> arrowAdded;
    boost::signals2::signal<void(APCArrow*)> arrowChanged;
    boost::signals2::signal<void(APCArrow*)> arrowRemoved;

    // The lists themselves, in order of addition (the file order).
    QList<APCProcess*>& GetProcesses() { return m_processes; }
    QList<APCVar*>& GetVars() { return m_vars; }
    QList<APCArrow*>& GetArrows() { return m_arrows; }

    // The first process / var with that id, or null. Safe from pool threads.
    APCProcess* FindProcess(const QString& id) const;
    APCVar* FindVar(const QString& id) const;
    // Arrows with the process at one end (of paramName only, when not empty).
    QList<APCArrow*> ArrowsOfProcess(APCObject* process, const QString& paramName) const;
    // Arrows with the var at one end.
    QList<APCArrow*> ArrowsOfVar(APCObject* var) const;
    // "process", "var" or empty.
    static QString ObjectType(APCObject* object);
    // Clones of the free vars, in list order; the caller owns them.
    QList<APCVar*> GetFreeVars() const;
    // The first object whose Check fails, or null.
    APCObject* FindInvalidObject() const;
    // True when an arrow feeds the var from an iterator process.
    bool IsIteratorOutput(const QString& varId) const;

    // Adds the process; a required parameter without a value gets a var and an
    // arrow. The model owns process.
    bool AddProcess(APCProcess* process);
    bool AddVar(APCVar* var);
    bool AddArrow(APCArrow* arrow);
    // Each Remove takes the object out of its list, like a Qt take function:
    // ownership passes to the caller, through the ...Removed signal. The arrows
    // a removal takes with it are handed over the same way, one signal each.
    bool RemoveProcess(APCProcess* process);
    bool RemoveVar(APCVar* var);
    bool RemoveArrow(APCArrow* arrow);
    // Unwires before (a clone the caller deletes) and wires after.
    bool ChangeArrow(APCArrow* before, APCArrow* after);
    // Brings arrows and vars in line with the process's edited parameters; the
    // arrows it removes are handed over through arrowRemoved.
    bool UpdateProcess(APCProcess* process);
    bool NotifyVarChanged(APCVar* var);

    // Clears every var's run value.
    void ResetVarValues();
    // Gives free vars the values of inputs (matched by id) and computes the rest.
    // False when a free var has no input or not every var can be resolved.
    bool ResolveVarValues(const QList<APCVar*>& inputs);

    // Appends the file's objects; false when it cannot be read. No wiring, no signal.
    bool LoadFile(const QString& path);
    // What a load reads from other files may be kept until the outermost LoadFile
    // under way on this thread returns: then `forget` runs (at once when none is).
    static bool Loading();
    static void WhenLoadEnds(std::function<void()> forget);
    bool SaveFile(const QString& path);
    // Adds the objects of copied fragments (Process and Var elements as a save
    // writes them, one after another) with new ids, moved by offset, and the
    // arrows their parameters imply between them; a reference to a var not among
    // them is emptied. The objects go straight into the lists, with no signal.
    // Returns them, processes and vars before arrows; none when the text is no XML.
    QList<APCObject*> PasteFragment(const QString& fragments, const QPointF& offset);
    // The model as its objects' saved forms (see ModelSnapshot).
    ModelSnapshot Snapshot() const;
    // Brings the model to target without a signal, given current, the snapshot
    // the model stands at now. Objects whose saved form is in both stay as they
    // are, at their addresses; the rest are taken out into removed (the caller
    // deletes them) or made anew and listed in added, processes and vars before
    // arrows. A current that does not match the model replaces every object.
    void Restore(const ModelSnapshot& target, const ModelSnapshot& current, QList<APCObject*>* removed,
                 QList<APCObject*>* added);

    // Called when an object's id changed; the lookup index is rebuilt on demand.
    void InvalidateIndex();

private:
    void WireArrow(APCArrow* arrow);
    void UnwireArrow(APCArrow* arrow);
    void SetArrowParameter(APCArrow* arrow, bool wire);
    // Creates the arrow joining var and the process parameter p, and adds it.
    APCArrow* CreateParameterArrow(APCProcess* process, const QString& paramName, int direction, APCVar* var);
    // Takes the arrow out, unwires it and tells the listeners.
    void DetachArrow(APCArrow* arrow);
    void ReadProcesses(const QDomNode& node);
    void ReadVars(const QDomNode& node);
    void ReadArrows(const QDomNode& node);
    // Appends the objects of a document's root element and gives them this model.
    bool ReadDocument(const QDomDocument& doc);
    void WriteConfiguration(QXmlStreamWriter& writer) const;
    template <class T>
    void RestoreList(QList<T*>& list, const QVector<QString>& target, const QVector<QString>& current,
                     const std::function<T*(const QDomElement&)>& make, QList<APCObject*>* removed,
                     QList<APCObject*>* added);

    // Ids of the vars an iterator writes, from one pass over the arrows.
    QSet<QString> IteratorOutputIds() const;

    template <class T>
    T* Lookup(const QList<T*>& list, QHash<QString, int>& index, const QString& id) const;

    QList<APCProcess*> m_processes;
    QList<APCVar*> m_vars;
    QList<APCArrow*> m_arrows;

    // id -> position of its first holder; checked against the list on every hit.
    // While ResolveVarValues or GetFreeVars runs, the iterator outputs are computed
    // once for the pass (arrows do not change meanwhile), for the thread running it.
    mutable const QSet<QString>* m_passOutputs = nullptr;
    mutable Qt::HANDLE m_passThread = nullptr;

    mutable std::mutex m_indexMutex;
    mutable QHash<QString, int> m_processIndex;
    mutable QHash<QString, int> m_varIndex;
    mutable int m_processIndexed = -1;
    mutable int m_varIndexed = -1;
    mutable quint64 m_generation = 0;
    mutable quint64 m_processIndexGeneration = ~0ull;
    mutable quint64 m_varIndexGeneration = ~0ull;
};

} // namespace Plugin
