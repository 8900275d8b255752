#include "support/GuiDriver.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace GuiDriver {

void OnNextModal(std::function<void(QWidget*)> act)
{
    QPointer<QWidget> before = QApplication::activeModalWidget();
    auto* timer = new QTimer;
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    QObject::connect(timer, &QTimer::timeout, [=] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal != before) {
            timer->stop();
            timer->deleteLater();
            act(modal);
            // A window the test forgot to close would hang the suite: fail instead.
            QPointer<QWidget> opened = modal;
            QTimer::singleShot(5000, modal, [opened] {
                if (opened && opened->isVisible() && QApplication::activeModalWidget() == opened) {
                    ADD_FAILURE() << "modal window left open";
                    opened->close();
                }
            });
        } else if (clock->elapsed() > 5000) {
            timer->stop();
            timer->deleteLater();
            ADD_FAILURE() << "no modal window opened";
        }
    });
    timer->start(10);
}

void TypeInto(QWidget* root, const QString& name, const QString& text)
{
    auto* edit = root->findChild<QLineEdit*>(name);
    ASSERT_NE(edit, nullptr) << name.toStdString();
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_End); // as after a click behind the text
    QTest::keyClicks(edit, text);
}

QAction* Action(QWidget* window, const QString& caption)
{
    for (QAction* action : window->findChildren<QAction*>())
        if (action->text() == caption)
            return action;
    ADD_FAILURE() << "no action " << caption.toStdString();
    return nullptr;
}

QStringList MenuEntries(QWidget* window, const QString& title)
{
    QStringList texts;
    auto* bar = window->findChild<QMenuBar*>();
    for (QAction* menu : bar ? bar->actions() : QList<QAction*>())
        if (title.isEmpty())
            texts << menu->text();
        else if (menu->text() == title)
            for (QAction* entry : menu->menu()->actions())
                texts << entry->text();
    return texts;
}

void Choose(QWidget* root, const char* name, const QString& text)
{
    auto* combo = Child<QComboBox>(root, name);
    ASSERT_NE(combo, nullptr);
    QTest::keyClick(combo, Qt::Key_Home);
    for (int i = 0; i < combo->count() && combo->currentText() != text; ++i)
        QTest::keyClick(combo, Qt::Key_Down);
    EXPECT_EQ(combo->currentText(), text);
}

void Click(QWidget* root, const QString& name)
{
    auto* button = root->findChild<QAbstractButton*>(name);
    for (QAbstractButton* b : root->findChildren<QAbstractButton*>())
        if (!button && b->text() == name && b->isVisible())
            button = b;
    ASSERT_NE(button, nullptr) << name.toStdString();
    QTest::mouseClick(button, Qt::LeftButton);
}

void ExpectMessage(const QString& title, const QString& text, int button)
{
    OnNextModal([=](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), title);
        EXPECT_EQ(box->text(), text);
        QAbstractButton* chosen = box->button(QMessageBox::StandardButton(button));
        QTest::mouseClick(chosen ? chosen : box->buttons().first(), Qt::LeftButton);
    });
}

void Retype(QWidget* edit, const QString& text)
{
    ASSERT_NE(edit, nullptr);
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        if (i > 0)
            QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClicks(edit, lines[i]);
    }
}

void PickPath(QWidget* picker, const QString& path)
{
    auto* name = picker->findChild<QLineEdit*>("fileNameEdit");
    ASSERT_TRUE(qobject_cast<QFileDialog*>(picker) && name);
    name->setText(path);
    QTest::keyClick(name, Qt::Key_Return);
}

void PickFolder(const QString& folder)
{
    OnNextModal([folder](QWidget* w) {
        auto* picker = qobject_cast<QFileDialog*>(w);
        ASSERT_TRUE(picker);
        EXPECT_EQ(picker->fileMode(), QFileDialog::Directory);
        picker->setDirectory(folder);
        static_cast<QDialog*>(picker)->accept();
    });
}

void AnswerRunTabs(QWidget* dialog, const std::function<QString(const QString&)>& value,
                   const std::function<void(QWidget*)>& next)
{
    auto* tabs = dialog->findChild<QTabWidget*>();
    ASSERT_TRUE(tabs);
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        QWidget* page = tabs->widget(i);
        const QString title = tabs->tabText(i);
        if (title == "Scene folders") {
            OnNextModal([path = value(title)](QWidget* picker) { PickPath(picker, path); });
            Click(page, "Add...");
            continue;
        }
        auto* edit = page->findChild<QLineEdit*>();
        ASSERT_TRUE(edit) << title.toStdString();
        QTest::keyClicks(edit, value(title));
    }
    if (next)
        OnNextModal(next);
    Click(dialog, "OK");
}

void OnNextPopup(QWidget* after, std::function<void(QMenu*)> act)
{
    auto* timer = new QTimer;
    auto ticks = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, [=] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        const bool found = menu && menu != after;
        if (!found && ++*ticks < 500)
            return;
        timer->deleteLater();
        timer->stop();
        if (found)
            act(menu);
        else
            ADD_FAILURE() << "no menu opened";
    });
    timer->start(10);
}

void ChooseInMenu(const QStringList& path, QWidget* after)
{
    OnNextPopup(after, [path](QMenu* menu) {
        for (QAction* action : menu->actions())
            if (action->text() == path.first()) {
                if (path.size() > 1)
                    ChooseInMenu(path.mid(1), menu);
                return QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
            }
        ADD_FAILURE() << "no entry " << path.first().toStdString();
        menu->close();
    });
}

} // namespace GuiDriver
