// platform/terminal/boxes.cpp - boxes as lines on standard error, progress as a bar when that is a terminal
//
// A bar is wiped before anything else is printed, so that lines never mix with it.
#include "platform/boxes.h"
#include "platform/terminal/terminal.h"

#include <stdio.h>

#ifdef _WIN32
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

static const char* progressCaption; // null: no box is open
static int shownSteps = -1;
static int boxCount;

static int barWanted()
{
    static const int isTerminal = isatty(fileno(stderr));
    return isTerminal;
}

static void wipeBar()
{
    if (shownSteps >= 0)
        fputs("\r\033[K", stderr);
    shownSteps = -1;
}

int terminalBoxCount()
{
    return boxCount;
}

void messageBox(const char* text, const char* caption, BoxIcon)
{
    wipeBar();
    ++boxCount;
    if (caption && *caption)
        fprintf(stderr, "message: %s [%s]\n", text, caption);
    else
        fprintf(stderr, "message: %s\n", text);
}

void showNotice(const char* text)
{
    wipeBar();
    fprintf(stderr, "notice: %s\n", text);
}

void showProgress(const char* caption)
{
    progressCaption = caption;
    shownSteps = -1;
}

void setProgress(float fraction)
{
    int steps = progressSteps(fraction);
    if (!progressCaption || !barWanted() || steps == shownSteps)
        return;
    shownSteps = steps;
    static const char full[] = "############################################################################";
    static_assert(sizeof full == progressStepCount + 1);
    int columns = steps / 2; // half the bar's steps, so that caption and bar stay on a line of 80
    fprintf(stderr, "\r%s [%.*s%*s]", progressCaption, columns, full, progressStepCount / 2 - columns, "");
    fflush(stderr);
}

void closeProgress()
{
    wipeBar();
    fflush(stderr);
    progressCaption = nullptr;
}

void beep()
{
    if (barWanted())
        fputc('\a', stderr);
}
