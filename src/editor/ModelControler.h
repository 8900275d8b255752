#pragma once

#include "model/ModelSnapshot.h"
#include "model/enAPCOperator.h"

#include <QMainWindow>

#include <boost/signals2/connection.hpp>

#include <memory>
#include <mutex>
#include <vector>
#include <QHash>
#include <QString>

class QDockWidget;
class QMenu;
class QTimer;
class QUndoStack;
class QTabWidget;
class QGraphicsItem;
class QGraphicsSceneMouseEvent;

namespace Plugin {

class APCModel;
class APCObject;
class GraphicsItemBase;
class ModelRecovery;
class ModelScene;
class ModelTool;
class ModelView;
class SequenceControl;

// The window of one open model and the face the editor's items, tools and
// commands see of it. It owns the document, the run control, the scene and
// the view.
class ModelControler : public QMainWindow
{
    Q_OBJECT
public:
    ModelControler(const QString& path, bool readOnly, QWidget* parent = nullptr);
    ~ModelControler() override;

    APCModel* GetDocument() const { return m_document; }
    ModelScene* GetScene() const { return m_scene; }
    ModelView* GetView() const { return m_view; }
    SequenceControl* GetSequenceControl() const { return m_control; }
    ModelTool* GetCurrentTool() const { return m_currentTool; }
    QString GetFilePath() const { return m_filePath; }
    void SetModelName(const QString& name) { m_modelName = name; }
    QString GetModelName() const { return m_modelName; }
    bool IsModified() const { return m_modified; }
    // Clearing the flag marks the history's present step as the saved one.
    void SetModified(bool modified);
    bool IsReadOnly() const { return m_readOnly; }
    // Writes the model to its file; true when all of it is there.
    bool SaveModel();

    // The window's history of edits. Everything a user action changes between
    // BeginEdit and the matching EndEdit is one step, named by text (or by the
    // last NameEdit); calls nest, and only the outermost pair counts. A pair
    // that changed nothing leaves no step.
    QUndoStack* GetHistory() const { return m_history; }
    void BeginEdit(const QString& text);
    void NameEdit(const QString& text);
    void EndEdit();
    // True when the history may be walked: an idle, writable model with no
    // edit under way.
    bool CanWalkHistory() const;
    // Puts the model back as snapshot has it, remaking only the objects (and
    // canvas items) that differ; for the history only.
    void RestoreModel(const ModelSnapshot& snapshot);

    // Makes tool current and lets it set the canvas up (its OnClick).
    void SetCurrentTool(ModelTool* tool);
    // Adds to the document by the object's kind; false for anything else.
    bool AddObject(APCObject* object);
    void RemoveObject(APCObject* object);
    // The canvas item of the object, else of the object with the same id: the
    // engine reports clones, which keep the ids.
    QGraphicsItem* FindItem(APCObject* object);
    GraphicsItemBase* FindItemBase(APCObject* object);
    GraphicsItemBase* FindItemBaseById(const QString& id);
    // Shows the log dock when it is hidden.
    void ShowLog();
    // Appends text to panel 0 (Output) or 1 (Error); other panels are ignored.
    void AppendLog(const QString& text, int panel);

signals:
    void APCObjectChanged(APCObject* pObject, enAPCOperator opt);

public slots:
    void OnSceneMouseMove(QGraphicsSceneMouseEvent* mouseEvent);
    void OnAPCObjectChanged(APCObject* pObject, enAPCOperator opt);

protected:
    void closeEvent(QCloseEvent* event) override;
    // The log dock, the menus, the tool bar and the commands of the window.
    void BuildInterface();
    // Reads the file and puts an item on the canvas for each object.
    void LoadModel();
    // An item on the canvas for each object of the document.
    void ShowDocument();
    // Select All at the end of editMenu, and the keys that act through commands
    // whose actions keep no key of their own.
    void AddShortcuts(QMenu* editMenu);
    // Asks whether to take up the changes an earlier window of this model left
    // unsaved; taken up, they are one step of the history.
    void OfferRecovery();

    bool m_modified = false;
    bool m_readOnly;
    QString m_filePath;
    QString m_modelName;
    APCModel* m_document;
    SequenceControl* m_control;
    ModelScene* m_scene;
    ModelView* m_view;
    QDockWidget* m_logDock = nullptr;
    QTabWidget* m_logTabs = nullptr;
    ModelTool* m_currentTool = nullptr; // not owned
    QList<QGraphicsItem*> m_removedItems;
    // To the document and the control, which the window outlives only briefly.
    std::vector<boost::signals2::scoped_connection> m_connections;
    // Progress reported from pool threads, by step id, until the window's timer
    // draws it on this thread; the lock is all the two threads share.
    std::mutex m_progressMutex;
    QHash<QString, double> m_pendingProgress;
    QTimer* m_progressTimer = nullptr; // child
    QUndoStack* m_history = nullptr;   // child
    int m_editDepth = 0;
    QString m_editText;
    ModelSnapshot m_beforeEdit; // the model as the outermost BeginEdit found it
    ModelSnapshot m_current;    // the model as the last step left it
    std::unique_ptr<ModelRecovery> m_recovery; // none in a read-only window
};

} // namespace Plugin
