// tests/qt/driver.cpp - the Linux program on the main thread, operated by events as the window system sends them
#include "tests/window/driver.h"

#include "platform/dialogs.h"
#include "platform/file_names.h"
#include "platform/qt/handles.h"
#include "shell/keys.h"
#include "shell/loop.h"
#include "shell/qt/desktop.h"
#include "shell/qt/single_instance.h"
#include "shell/scene.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QElapsedTimer>
#include <QtCore/QMimeData>
#include <QtCore/QThread>
#include <QtCore/QUrl>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QDropEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <atomic>
#include <deque>
#include <fstream>
#include <mutex>
#include <thread>

constexpr int waitLimitMs = 20000;

static std::mutex guard;
static std::deque<std::string> answers;

// ---- file dialogs ----

static int chooseAnswer(FileDialog* dialog)
{
    std::lock_guard<std::mutex> lock(guard);
    if (answers.empty())
        return 0;
    std::string path = answers.front();
    answers.pop_front();
    if (path.empty() || path.size() >= dialog->pathRoom)
        return 0;
    memcpy(dialog->path, path.c_str(), path.size() + 1);
    if (dialog->fileTitle)
    {
        std::string title = std::string(fileNameOf(path.c_str())).substr(0, dialog->fileTitleRoom - 1);
        memcpy(dialog->fileTitle, title.c_str(), title.size() + 1);
    }
    return 1;
}

int chooseFileToOpen(FileDialog* dialog)
{
    return chooseAnswer(dialog);
}

int chooseFileToSave(FileDialog* dialog)
{
    return chooseAnswer(dialog);
}

void answerDialogs(const std::vector<std::string>& paths)
{
    std::lock_guard<std::mutex> lock(guard);
    answers.assign(paths.begin(), paths.end());
}

// ---- the program's thread ----

static bool eventually(const std::function<bool()>& holds)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds())
    {
        if (clock.elapsed() > waitLimitMs)
            return false;
        QThread::msleep(2);
    }
    return true;
}

static void countWaits();

int runTestsBeside(const std::vector<std::string>& programArguments, int (*runTests)())
{
    std::vector<char*> arguments;
    std::vector<std::string> texts = programArguments;
    for (std::string& text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    int status = 1;
    std::atomic<bool> over = false;
    std::thread tests(
        [&]
        {
            if (eventually([] { return loopState.appRunning != 0; }))
            {
                countWaits();
                settle();
                status = runTests();
                onProgramThread([] { windowHandles.main->close(); });
            }
            over = true;
        });
    int programStatus = runDesktop(static_cast<int>(texts.size()), arguments.data());
    bool ended = over || status != 1;
    tests.join();
    return ended && programStatus == 0 ? status : 1;
}

void onProgramThread(const std::function<void()>& function)
{
    QMetaObject::invokeMethod(QApplication::instance(), function, Qt::BlockingQueuedConnection);
}

// Posts a function that may open a box, in which it stays until the box has closed.
static void post(const std::function<void()>& function)
{
    QMetaObject::invokeMethod(QApplication::instance(), function, Qt::QueuedConnection);
}

template <typename Result>
static Result askProgram(const std::function<Result()>& function)
{
    Result result = {};
    onProgramThread([&] { result = function(); });
    return result;
}

// The program opens given files and draws each time before its loop waits for events, and this counter follows it.
static std::atomic<unsigned> waits;

static void countWaits()
{
    onProgramThread(
        []
        {
            QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                             windowHandles.main, [] { ++waits; });
        });
}

static QDialog* openBox()
{
    return qobject_cast<QDialog*>(QApplication::activeModalWidget());
}

void settle()
{
    for (int i = 0; i < 2; ++i) // the first wait may have begun before what is to be handled
    {
        unsigned before = waits;
        onProgramThread([] {});
        eventually([before] { return waits != before; });
    }
    eventually( // a frame that is asked for while a box is open is drawn when it has closed
        [] { return !askProgram<bool>([] { return loopState.redrawPending && loopState.appRunning && !openBox(); }); });
}

// ---- menu and panel ----

void command(int id)
{
    onProgramThread([id] { windowHandles.menu.value(id)->trigger(); });
    settle();
}

void pressPanel(int id)
{
    onProgramThread([id] { windowHandles.panelButtons.value(id)->click(); });
    settle();
}

void chooseInList(int index)
{
    onProgramThread(
        [index]
        {
            windowHandles.filterList->setCurrentIndex(index);
            emit windowHandles.filterList->activated(index);
        });
    settle();
}

std::string menuText(int id)
{
    return askProgram<std::string>([id] { return windowHandles.menu.value(id)->text().toStdString(); });
}

bool menuEnabled(int id)
{
    return askProgram<bool>([id] { return windowHandles.menu.value(id)->isEnabled(); });
}

bool menuTicked(int id)
{
    return askProgram<bool>([id] { return windowHandles.menu.value(id)->isChecked(); });
}

bool panelTicked(int id)
{
    return askProgram<bool>([id] { return windowHandles.panelButtons.value(id)->isChecked(); });
}

std::string panelText(int id)
{
    return askProgram<std::string>([id] { return windowHandles.panelTexts.value(id)->text().toStdString(); });
}

std::vector<std::string> listEntries()
{
    std::vector<std::string> entries;
    onProgramThread(
        [&]
        {
            for (int i = 0; i < windowHandles.filterList->count(); ++i)
                entries.push_back(windowHandles.filterList->itemText(i).toStdString());
        });
    return entries;
}

static std::string entryLine(const QAction* action)
{
    if (action->isSeparator())
        return "-";
    return std::to_string(windowHandles.menu.key(const_cast<QAction*>(action), 0)) + " " + action->text().toStdString();
}

std::vector<std::string> menuLines()
{
    std::vector<std::string> lines;
    onProgramThread(
        [&]
        {
            for (const QAction* menu : static_cast<QMainWindow*>(windowHandles.main)->menuBar()->actions())
            {
                lines.push_back(menu->text().toStdString());
                for (const QAction* entry : menu->menu()->actions())
                    lines.push_back(entryLine(entry));
            }
        });
    return lines;
}

static void addControlLine(const QWidget* control, std::vector<std::string>* lines)
{
    if (control == windowHandles.filterList)
        lines->push_back("list");
    else if (const auto* button = qobject_cast<const QAbstractButton*>(control))
        lines->push_back(std::to_string(windowHandles.panelButtons.key(const_cast<QAbstractButton*>(button), 0)) + " " +
                         button->text().toStdString());
    else if (const auto* label = qobject_cast<const QLabel*>(control))
        if (int id = windowHandles.panelTexts.key(const_cast<QLabel*>(label), 0))
            lines->push_back(std::to_string(id) + " " + label->accessibleName().toStdString());
}

std::vector<std::string> panelLines()
{
    std::vector<std::string> lines;
    onProgramThread(
        [&]
        {
            for (const QGroupBox* group : windowHandles.panel->findChildren<QGroupBox*>())
            {
                lines.push_back(group->title().toStdString());
                for (const QWidget* control : group->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                    addControlLine(control, &lines);
            }
        });
    return lines;
}

std::string windowTitle()
{
    return askProgram<std::string>([] { return windowHandles.main->windowTitle().toStdString(); });
}

size_t objectCount()
{
    return askProgram<size_t>([] { return static_cast<size_t>(QApplication::allWidgets().size()); });
}

size_t residentBytes()
{
    size_t pages = 0;
    std::ifstream("/proc/self/statm").ignore(32, ' ') >> pages;
    return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

bool runKbx(const std::string& arguments)
{
    return system((TEST_PROGRAMS "/kbx " + arguments + " 2>/dev/null").c_str()) == 0;
}

// ---- boxes ----

static bool boxIsOpen()
{
    return askProgram<bool>([] { return openBox() != nullptr; });
}

// Chooses a menu entry or clicks a button, which may open a box.
static void postChoice(int id)
{
    post(
        [id]
        {
            if (QAction* action = windowHandles.menu.value(id))
                action->trigger();
            else
                windowHandles.panelButtons.value(id)->click();
        });
}

Box noticeAfter(int id)
{
    Box box = {};
    QElapsedTimer clock;
    postChoice(id);
    if (!eventually(boxIsOpen))
        return box;
    clock.start();
    onProgramThread([&] { box.text = openBox()->findChild<QLabel*>()->text().toStdString(); });
    eventually([] { return !boxIsOpen(); });
    box.shownMs = static_cast<int>(clock.elapsed());
    settle();
    return box;
}

Box boxAfter(int id, const std::function<void()>& meanwhile)
{
    Box box = {};
    postChoice(id);
    if (!eventually(boxIsOpen))
        return box;
    onProgramThread(
        [&]
        {
            if (const auto* message = qobject_cast<QMessageBox*>(openBox()))
                box = { message->text().toStdString(), message->windowTitle().toStdString(), 0 };
        });
    if (meanwhile)
        meanwhile();
    post([] { openBox()->accept(); });
    eventually([] { return !boxIsOpen(); });
    settle();
    return box;
}

// ---- mouse and keyboard ----

static Qt::MouseButton heldButton = Qt::NoButton;

static void sendMouse(QEvent::Type type, Qt::MouseButton button, int x, int y)
{
    onProgramThread(
        [=]
        {
            QWidget* display = windowHandles.display;
            QPointF at = QPointF(x, y) / display->devicePixelRatioF();
            QMouseEvent event(type, at, display->mapToGlobal(at), button, heldButton, Qt::NoModifier);
            QApplication::sendEvent(display, &event);
        });
    settle();
}

static Qt::MouseButton buttonOf(MouseButton button)
{
    return button == leftButton ? Qt::LeftButton : Qt::RightButton;
}

void pressMouse(MouseButton button, int x, int y)
{
    heldButton = buttonOf(button);
    sendMouse(QEvent::MouseButtonPress, heldButton, x, y);
}

void moveMouse(int x, int y)
{
    sendMouse(QEvent::MouseMove, Qt::NoButton, x, y);
}

void releaseMouse(MouseButton button, int x, int y)
{
    heldButton = Qt::NoButton;
    sendMouse(QEvent::MouseButtonRelease, buttonOf(button), x, y);
}

void turnWheel(int notches)
{
    onProgramThread(
        [notches]
        {
            QWidget* display = windowHandles.display;
            QPointF at = display->rect().center();
            QWheelEvent event(at, display->mapToGlobal(at), {}, { 0, notches * 120 }, Qt::NoButton, Qt::NoModifier,
                              Qt::NoScrollPhase, false);
            QApplication::sendEvent(display, &event);
        });
    settle();
}

static int codeOf(int key)
{
    switch (key)
    {
    case keyEscape: return Qt::Key_Escape;
    case keyHome: return Qt::Key_Home;
    case keyPageUp: return Qt::Key_PageUp;
    case keyPageDown: return Qt::Key_PageDown;
    case keyLeft: return Qt::Key_Left;
    case keyRight: return Qt::Key_Right;
    case keyUp: return Qt::Key_Up;
    case keyDown: return Qt::Key_Down;
    case keyF5: return Qt::Key_F5;
    }
    return key;
}

// Waits until the keyboard is back in the window, where it has to come by itself after a box. Only without a display
// nobody brings it back, because there is no window manager, and a compositor without a screen has no keyboard at all.
static void waitForKeyboard()
{
    onProgramThread(
        []
        {
            if (QGuiApplication::platformName() != "xcb")
                windowHandles.main->activateWindow();
        });
    eventually(
        []
        {
            return askProgram<bool>(
                [] { return QApplication::focusWidget() || QGuiApplication::platformName() == "wayland"; });
        });
}

// To the widget with the focus, as the window system does.
void pressKey(int key, uint32_t modifiers)
{
    waitForKeyboard();
    onProgramThread(
        [=]
        {
            Qt::KeyboardModifiers held = Qt::NoModifier;
            held.setFlag(Qt::ControlModifier, modifiers & withControl);
            held.setFlag(Qt::ShiftModifier, modifiers & withShift);
            QWidget* receiver = QApplication::focusWidget();
            if (!receiver && QGuiApplication::platformName() == "wayland")
                receiver = windowHandles.main;
            if (!receiver)
                return; // the key is lost
            for (QEvent::Type type : { QEvent::KeyPress, QEvent::KeyRelease })
            {
                QKeyEvent event(type, codeOf(key), held);
                QApplication::sendEvent(receiver, &event);
            }
        });
    settle();
}

static Shown bytesOf(const QImage& picture)
{
    QImage image = picture.convertToFormat(QImage::Format_BGR888);
    Shown shown = { image.width(), image.height(), {} };
    for (int row = 0; row < image.height(); ++row)
        shown.bytes.insert(shown.bytes.end(), image.constScanLine(row),
                           image.constScanLine(row) + static_cast<ptrdiff_t>(image.width()) * 3);
    return shown;
}

void dropFiles(const std::vector<std::string>& paths)
{
    onProgramThread(
        [&]
        {
            QMimeData data;
            QList<QUrl> urls;
            for (const std::string& path : paths)
                urls.append(QUrl::fromLocalFile(QString::fromStdString(path)));
            data.setUrls(urls);
            QWidget* window = windowHandles.main;
            QDragEnterEvent enters({ 10, 10 }, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(window, &enters);
            if (!enters.isAccepted())
                return;
            QDropEvent drops({ 10, 10 }, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(window, &drops);
        });
    settle();
}

bool startAgain(const std::string& path)
{
    bool handed = handOver(path.c_str());
    settle();
    return handed;
}

Shown clipboardPicture()
{
    Shown copied = {};
    onProgramThread([&] { copied = bytesOf(QGuiApplication::clipboard()->image()); });
    return copied;
}

void enlargeWindow(int width, int height)
{
    onProgramThread([=] { windowHandles.main->resize(windowHandles.main->size() + QSize(width, height)); });
    settle();
}

void minimiseWindow()
{
    onProgramThread([] { windowHandles.main->showMinimized(); });
    settle();
}

void restoreWindow()
{
    onProgramThread([] { windowHandles.main->showNormal(); });
    settle();
}

Shown shownPicture()
{
    Shown shown = {};
    onProgramThread([&] { shown = bytesOf(windowHandles.display->grab().toImage()); });
    return shown;
}
