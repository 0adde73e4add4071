// platform/boxes.h - what the system says while it works: message boxes, notices, the progress bar, the beep
//
// Every program links exactly one implementation: windows and dialogs, lines on standard error, or a recorder for
// tests.
#pragma once

enum BoxIcon
{
    iconNone,
    iconStop
};

// Shows a text and waits until the user has seen it. caption null: the system's default one; "" is an empty caption.
void messageBox(const char* text, const char* caption, BoxIcon icon);

// Shows the outcome of a mesh tool for 1.3 seconds; the caller goes on when it has closed by itself.
void showNotice(const char* text);

// One progress box at a time: open it with its caption line, move its bar, close it.
void showProgress(const char* caption);
void setProgress(float fraction);
void closeProgress();

void beep();

// The bar has 76 steps; a fraction of 1 fills it. Truncated, below 0 (or not a number) is none, above 76 is 76.
constexpr int progressStepCount = 76;
int progressSteps(float fraction);
