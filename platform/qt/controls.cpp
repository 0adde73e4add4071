// platform/qt/controls.cpp - menu, tool panel and windows of the Linux program
#include "platform/controls.h"
#include "platform/qt/handles.h"

#include <QtGui/QAction>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

WindowHandles windowHandles;

void checkMenuItem(int id, int on)
{
    if (QAction* action = windowHandles.menu.value(id))
    {
        action->setCheckable(true); // an entry without a tick shows no empty box before it has ever had one
        action->setChecked(on != 0);
    }
}

void enableMenuItem(int id, int on)
{
    if (QAction* action = windowHandles.menu.value(id))
        action->setEnabled(on != 0);
}

void renameMenuItem(int id, const char* text)
{
    if (QAction* action = windowHandles.menu.value(id)) // a single & would underline the next letter
        action->setText(QString::fromUtf8(text).replace('&', "&&"));
}

void checkPanelBox(int id, int on)
{
    if (QAbstractButton* box = windowHandles.panelButtons.value(id))
        box->setChecked(on != 0);
}

int panelBoxChecked(int id)
{
    const QAbstractButton* box = windowHandles.panelButtons.value(id);
    return box && box->isChecked();
}

void setPanelText(int id, const char* text)
{
    if (QLabel* label = windowHandles.panelTexts.value(id))
    {
        label->setText(QString::fromUtf8(text));
        label->setAccessibleDescription(label->text()); // its accessible name says what is counted
    }
}

void clearFilterList()
{
    if (windowHandles.filterList)
        windowHandles.filterList->clear();
}

void addFilterEntry(const char* text)
{
    if (windowHandles.filterList)
        windowHandles.filterList->addItem(QString::fromUtf8(text));
}

void selectFilterEntry(int index)
{
    if (windowHandles.filterList)
        windowHandles.filterList->setCurrentIndex(index);
}

int selectedFilterEntry()
{
    return windowHandles.filterList ? windowHandles.filterList->currentIndex() : 0;
}

void setWindowTitle(const char* text)
{
    if (windowHandles.main) // Qt takes a single "[*]" as the place for a mark
        windowHandles.main->setWindowTitle(QString::fromUtf8(text).replace("[*]", "[*][*]"));
}

void focusMainWindow()
{
    if (windowHandles.display)
        windowHandles.display->setFocus();
}

void focusToolPanel()
{
    if (windowHandles.panel)
        windowHandles.panel->setFocus();
}

void destroyMainWindow()
{
    if (windowHandles.main)
        windowHandles.main->close();
}
