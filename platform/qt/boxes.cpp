// platform/qt/boxes.cpp - message boxes, notices and the progress bar of the Linux program
#include "platform/boxes.h"
#include "platform/qt/handles.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QVBoxLayout>

constexpr int noticeMs = 1300;
constexpr int exposureLimitMs = 100; // how long a reader waits for its bar to appear
constexpr int progressWidth = 300;   // pixels of a display without scaling

struct ProgressBox
{
    QDialog* dialog; // null: there is no bar
    QProgressBar* bar;
};

static ProgressBox progressBox;

// File names must not be taken for mark-up.
static QLabel* plainLabel(const char* text)
{
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setTextFormat(Qt::PlainText);
    return label;
}

void messageBox(const char* text, const char* caption, BoxIcon icon)
{
    QMessageBox box(windowHandles.main);
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromUtf8(text));
    box.setWindowTitle(QString::fromUtf8(caption ? caption : "Error"));
    box.setIcon(icon == iconStop ? QMessageBox::Critical : QMessageBox::NoIcon);
    box.exec();
}

void explainFailure(const char*, const char*) {}

void showNotice(const char* text)
{
    QDialog box(windowHandles.main, Qt::Dialog | Qt::FramelessWindowHint);
    auto* layout = new QVBoxLayout(&box);
    layout->addWidget(plainLabel(text));
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &box, &QDialog::accept);
    timer.start(noticeMs);
    box.exec();
}

// Handles events until the box is on the screen. Timers and input stay where they are, because a reader is running.
static void waitForExposure(QWidget* box)
{
    QDeadlineTimer deadline(exposureLimitMs);
    while (!(box->windowHandle() && box->windowHandle()->isExposed()) && !deadline.hasExpired())
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
    box->repaint();
}

void showProgress(const char* caption)
{
    closeProgress();
    progressBox.dialog = new QDialog(windowHandles.main, Qt::Dialog | Qt::FramelessWindowHint);
    progressBox.bar = new QProgressBar;
    progressBox.bar->setRange(0, progressStepCount);
    progressBox.bar->setTextVisible(false);
    progressBox.bar->setMinimumWidth(progressWidth);
    auto* layout = new QVBoxLayout(progressBox.dialog);
    layout->addWidget(plainLabel(caption));
    layout->addWidget(progressBox.bar);
    progressBox.dialog->show();
    waitForExposure(progressBox.dialog);
}

void setProgress(float fraction)
{
    int steps = progressSteps(fraction);
    if (!progressBox.dialog || progressBox.bar->value() == steps)
        return;
    progressBox.bar->setValue(steps);
    progressBox.bar->repaint(); // at once, because readers handle no events
}

void closeProgress()
{
    delete progressBox.dialog;
    progressBox = {};
}

void beep()
{
    QApplication::beep();
}
