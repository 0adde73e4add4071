// shell/qt/program.cpp - one instance, one window, and frames between the events
#include "platform/boxes.h"
#include "platform/controls.h"
#include "platform/processor.h"
#include "platform/qt/handles.h"
#include "shell/given_files.h"
#include "shell/loop.h"
#include "shell/panel.h"
#include "shell/qt/desktop.h"
#include "shell/qt/pictures.h"
#include "shell/qt/single_instance.h"
#include "shell/scene.h"
#include "shell/start_up.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <locale.h>
#include <stdio.h>
#include <unistd.h>

// Opens what has been given and draws, before the event loop waits for events, and wakes the loop for the next frame.
// Loops inside a box do neither.
static void workBeforeWaiting(QTimer* nextFrame)
{
    if (QThread::currentThread()->loopLevel() != 1)
        return;
    openWaitingFile();
    uint32_t ms = drawDueFrame();
    if (ms != noFrameDue)
        nextFrame->start(static_cast<int>(ms));
}

static bool createPicture()
{
    if (createFrameBuffer(&frameBuffer, frameState.displayWidth, frameState.displayHeight))
        return true;
    messageBox("Failed to create 3D context.", "", iconNone);
    return false;
}

static void shutDown()
{
    loopState.appRunning = 0;
    destroyFrameBuffer(&frameBuffer);
    releaseModels();
    releaseImages();
    windowHandles = {};
}

// Builds the scene behind the window, shows it, and handles events until the window is closed.
static int runWindow(const char* path)
{
    MainWindow window;
    if (!buildScene(path))
        return 1;
    initPanel();
    if (!createPicture())
        return 1;
    SingleInstance instance;
    QTimer nextFrame;
    nextFrame.setSingleShot(true);
    nextFrame.setTimerType(Qt::PreciseTimer);
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &window,
                     [&nextFrame] { workBeforeWaiting(&nextFrame); });
    loopState.appRunning = 1;
    window.resize(window.sizeHint()); // Qt itself would make it no larger than two thirds of the screen
    window.show();
    focusMainWindow();
    QApplication::exec();
    shutDown();
    return 0;
}

static QtMessageHandler usualMessages;

// Qt gives up with abort() where it finds no display, and the operating system would report a crash.
static void endWithoutCrash(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type != QtFatalMsg)
    {
        usualMessages(type, context, text);
        return;
    }
    fprintf(stderr, "kestrelbox: %s\n", text.trimmed().toLocal8Bit().constData());
    _exit(1);
}

int runDesktop(int argumentCount, char** arguments)
{
    usualMessages = qInstallMessageHandler(endWithoutCrash);
    QApplication application(argumentCount, arguments);
    setlocale(LC_NUMERIC, "C"); // Qt has taken over the user's; numbers in files have a point in every country
    QApplication::setApplicationName("kestrelbox");
    QApplication::setDesktopFileName("kestrelbox");
    QApplication::setWindowIcon(QIcon(QPixmap::fromImage(iconPicture())));
    const char* path = argumentCount > 1 ? arguments[1] : "";
    if (!acceptProcessor(CpuFeatures()))
        return 1;
    if (handOver(path))
        return 0;
    return runWindow(path);
}
