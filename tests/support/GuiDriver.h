#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>

class QAction;
class QMenu;
class QWidget;

namespace GuiDriver {

// Calls act with the next modal window that opens (from inside its event loop, as a
// user would meet it); if none opens within 5 s the test fails. Call before exec().
void OnNextModal(std::function<void(QWidget*)> act);

// Types text at the end of the line edit named name below root, as a user would.
void TypeInto(QWidget* root, const QString& name, const QString& text);

// The action captioned caption among window's (the test fails when there is none).
QAction* Action(QWidget* window, const QString& caption);

// The captions of the entries of window's menu titled title, or of the menus
// themselves when title is empty.
QStringList MenuEntries(QWidget* window, const QString& title = QString());

// Picks the row captioned text of the closed combo box named name below root, with the keyboard.
void Choose(QWidget* root, const char* name, const QString& text);

// Clicks the button named name below root, or else the visible one captioned name
// (the test fails when there is none).
void Click(QWidget* root, const QString& name);

// Replaces the whole text of edit by typing, as a user selecting all and typing;
// a line break in text is typed as Return.
void Retype(QWidget* edit, const QString& text);

// Checks the title and text of the next modal window, a message box, and
// presses button there, or its first button when it has no such one.
void ExpectMessage(const QString& title, const QString& text, int button = 0);

// Answers the file dialog picker with path, typed into its name field.
void PickPath(QWidget* picker, const QString& path);

// Answers the next modal window, a folder dialog, with folder, as it shows it.
void PickFolder(const QString& folder);

// Fills every tab of the run dialog dialog with value(tab title), a folder
// picked through Add... on a "Scene folders" tab, then presses OK; next, when
// given, answers the modal window that follows.
void AnswerRunTabs(QWidget* dialog, const std::function<QString(const QString&)>& value,
                   const std::function<void(QWidget*)>& next = {});

// Calls act with the next popup menu other than after, from inside its loop.
void OnNextPopup(QWidget* after, std::function<void(QMenu*)> act);

// Clicks the entries of path in turn in the next popup menu, through submenus.
void ChooseInMenu(const QStringList& path, QWidget* after = nullptr);

// The child of root named name (the test fails when there is none).
template <class T>
T* Child(QObject* root, const char* name)
{
    auto* found = root->findChild<T*>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

} // namespace GuiDriver

// Failures show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}
