// tests/qt/access_test.cpp - the Linux window without a mouse, and for who cannot see it
#include "tests/window/driver.h"

#include "platform/qt/handles.h"
#include "resources/controls.h"
#include "shell/keys.h"

#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenuBar>
#include <gtest/gtest.h>
#include <algorithm>

// The identifiers of the panel in the order of the table, without the counts, which take no keys.
static std::vector<int> idsOfTable()
{
    std::vector<int> ids;
    for (const PanelGroup& group : panelGroups)
    {
        if (group.listId)
            ids.push_back(group.listId);
        for (const PanelControl& control : group.controls)
            if (group.kind != panelCount)
                ids.push_back(control.id);
    }
    return ids;
}

// 0 is the display, -1 anything else.
static int idOfFocus()
{
    QWidget* focus = QApplication::focusWidget();
    if (focus == windowHandles.display)
        return 0;
    if (focus == windowHandles.filterList)
        return ID_FILTER_LIST;
    return windowHandles.panelButtons.key(qobject_cast<QAbstractButton*>(focus), -1);
}

static void pressInFocus(int key, Qt::KeyboardModifiers held, const QString& text = {})
{
    if (!QApplication::focusWidget())
        return; // the key is lost
    for (QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease })
    {
        QKeyEvent event(type, key, held, text);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
}

// Where a key leads from the display until it comes back there.
static std::vector<int> walk(int key, Qt::KeyboardModifiers held)
{
    std::vector<int> ids;
    onProgramThread(
        [&]
        {
            windowHandles.display->setFocus();
            do
            {
                pressInFocus(key, held);
                ids.push_back(idOfFocus());
            } while (ids.back() != 0 && ids.size() < 50);
        });
    return ids;
}

class Access : public testing::Test
{
protected:
    void SetUp() override
    {
        pressKey(keyEscape, 0); // waits for the keyboard
        bool there = false;
        onProgramThread([&] { there = QApplication::focusWidget() != nullptr; });
        ASSERT_TRUE(there) << "the keyboard has not come back";
    }
};

TEST_F(Access, TabLeadsToEveryControlAndBack)
{
    std::vector<int> expected = idsOfTable();
    expected.push_back(0);
    EXPECT_EQ(walk(Qt::Key_Tab, Qt::NoModifier), expected);
    std::reverse(expected.begin(), expected.end() - 1);
    EXPECT_EQ(walk(Qt::Key_Backtab, Qt::ShiftModifier), expected);
}

TEST_F(Access, TheSpaceBarPressesEveryBox)
{
    for (const PanelGroup& group : panelGroups)
    {
        for (const PanelControl& control : group.controls)
        {
            if (group.kind != panelBox)
                continue;
            bool before = panelTicked(control.id);
            auto press = [&]
            {
                windowHandles.panelButtons.value(control.id)->setFocus();
                pressInFocus(Qt::Key_Space, Qt::NoModifier, " ");
            };
            onProgramThread(press);
            EXPECT_NE(panelTicked(control.id), before) << control.text;
            onProgramThread(press);
            EXPECT_EQ(panelTicked(control.id), before) << control.text;
        }
    }
    onProgramThread([] { windowHandles.display->setFocus(); });
    settle();
}

TEST_F(Access, F10OpensTheMenuAndEveryEntryIsReachedByArrows)
{
    size_t menusReached = 0, entriesReached = 0;
    onProgramThread(
        [&]
        {
            QMenuBar* bar = static_cast<QMainWindow*>(windowHandles.main)->menuBar();
            windowHandles.display->setFocus();
            pressInFocus(Qt::Key_F10, Qt::NoModifier);
            for (const Menu& expected : menus)
            {
                auto* open = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                if (!open || !bar->activeAction() || bar->activeAction()->text() != expected.text)
                    break;
                ++menusReached;
                std::vector<const QAction*> reached;
                auto press = [&](int key)
                {
                    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
                    QApplication::sendEvent(open, &event);
                };
                for (size_t i = 0; i < expected.entries.size(); ++i)
                {
                    if (open->activeAction() && std::count(reached.begin(), reached.end(), open->activeAction()) == 0)
                        reached.push_back(open->activeAction());
                    press(Qt::Key_Down);
                }
                entriesReached += reached.size();
                press(Qt::Key_Right);
            }
            while (QWidget* popup = QApplication::activePopupWidget())
                popup->close();
            windowHandles.display->setFocus();
        });
    settle();
    size_t entries = 0;
    for (const Menu& menu : menus)
        for (const MenuEntry& entry : menu.entries)
            entries += entry.text && menuEnabled(entry.id);
    EXPECT_EQ(menusReached, std::size(menus));
    EXPECT_EQ(entriesReached, entries);
}

static QString nameOf(QWidget* widget, QAccessible::Text kind)
{
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(widget);
    return access ? access->text(kind) : QString();
}

TEST_F(Access, EveryControlHasANameAndEveryCountItsNumber)
{
    std::vector<std::string> without, wrong;
    onProgramThread(
        [&]
        {
            QList<QWidget*> controls = { windowHandles.display, windowHandles.filterList };
            for (QAbstractButton* button : windowHandles.panelButtons)
                controls.append(button);
            for (QLabel* count : windowHandles.panelTexts)
            {
                controls.append(count);
                if (count->text().isEmpty() || nameOf(count, QAccessible::Description) != count->text())
                    wrong.push_back(count->text().toStdString());
            }
            for (QWidget* widget : windowHandles.main->findChildren<QWidget*>())
                if (widget->focusPolicy() & Qt::TabFocus)
                    controls.append(widget);
            for (QWidget* control : controls)
                if (nameOf(control, QAccessible::Name).isEmpty())
                    without.push_back(control->metaObject()->className());
        });
    EXPECT_EQ(without, std::vector<std::string>{});
    EXPECT_EQ(wrong, std::vector<std::string>{});
}
