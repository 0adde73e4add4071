// platform/boxes.h - message boxes, notices, the progress bar and the beep
//
// kestrelbox.exe links win32/boxes.cpp, kestrelbox on Linux qt/boxes.cpp (windows), kbx on every operating system
// links terminal/boxes.cpp (lines on standard error), and tests and fuzzers link tests/recording.
#pragma once

enum BoxIcon
{
    iconNone,
    iconStop
};

// Shows a text and waits until the user has closed it. A null caption means the default one of the operating system; ""
// is an empty caption.
void messageBox(const char* text, const char* caption, BoxIcon icon);

// Explains why something could not be done with a file, after the box that says so. The command line prints a line; the
// windows leave it at the box.
void explainFailure(const char* path, const char* cause);

// Shows the result of a mesh tool for 1.3 seconds and returns when the notice has closed.
void showNotice(const char* text);

// Open the progress bar with a line of text, move it, close it. There is one at a time.
void showProgress(const char* caption);
void setProgress(float fraction);
void closeProgress();

void beep();

// How many of the 76 steps of the bar a fraction fills, rounded down: none below 0 and for a NaN, all from 1 on.
constexpr int progressStepCount = 76;
int progressSteps(float fraction);
