// shell/qt/main_window.cpp - the main window's menus and events
#include "platform/qt/handles.h"
#include "resources/controls.h"
#include "shell/commands.h"
#include "shell/given_files.h"
#include "shell/qt/desktop.h"
#include "shell/scene.h"

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QAction>
#include <QtGui/QDropEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenuBar>

void makeMenus(QMainWindow* window)
{
    for (const Menu& table : menus)
    {
        QMenu* menu = window->menuBar()->addMenu(table.text);
        for (const MenuEntry& entry : table.entries)
        {
            if (!entry.text)
            {
                menu->addSeparator();
                continue;
            }
            QAction* action = menu->addAction(entry.text, [id = entry.id] { runCommand(id); });
            action->setEnabled(!entry.disabled);
            windowHandles.menu.insert(entry.id, action);
        }
    }
}

MainWindow::MainWindow()
{
    setWindowTitle(programName);
    makeMenus(this);
    auto* middle = new QWidget;
    auto* layout = new QHBoxLayout(middle);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(new DisplayWidget, 1);
    layout->addWidget(makeToolPanel());
    setCentralWidget(middle);
    setAcceptDrops(true);
    windowHandles.main = this;
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange)
        mainWindowSized(isMinimized());
    else if (event->type() == QEvent::ActivationChange && !isMinimized()) // a frame would change the title again
        mainWindowActivated(isActiveWindow());
    QMainWindow::changeEvent(event);
}

// Keys come here when the control that has the focus does not need them itself. Qt has no F10, by which every menu can
// be reached.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::NoModifier)
        menuBar()->setActiveAction(menuBar()->actions().constFirst());
    else if (!takeKey(event))
        QMainWindow::keyPressEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

// Of several files that are dropped together, the first one is taken.
void MainWindow::dropEvent(QDropEvent* event)
{
    QString path = event->mimeData()->urls().value(0).toLocalFile();
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    giveFile(QFile::encodeName(path).toStdString());
}
