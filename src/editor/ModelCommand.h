#pragma once

class QAction;

namespace Plugin {

class ModelControler;

// A command of a model window: a menu entry or tool-bar button, asked on every
// tick of the command manager whether it is enabled.
class ModelCommand
{
public:
    ModelCommand() = default;
    ModelCommand(const ModelCommand&) = delete;
    ModelCommand& operator=(const ModelCommand&) = delete;
    virtual ~ModelCommand() = default;

    virtual void OnClick() = 0;
    virtual bool IsEnable() = 0;
    // Answered true by every command; nothing asks it.
    virtual bool ReservedQuery() = 0;
    // Called once when the manager takes the command.
    virtual void OnCreate() {}

    QAction* GetAction() const { return m_action; }
    void SetAction(QAction* action) { m_action = action; }
    ModelControler* GetControler() const { return m_controler; }
    void SetControler(ModelControler* controler) { m_controler = controler; }

protected:
    QAction* m_action = nullptr;           // parented by the window
    ModelControler* m_controler = nullptr; // the window the command works on
};

} // namespace Plugin
