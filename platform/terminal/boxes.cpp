// platform/terminal/boxes.cpp - message boxes and notices as lines on standard error, progress as a bar on a terminal
//
// The bar is wiped before anything else is printed, so that lines do not mix with it.
#include "platform/boxes.h"
#include "platform/pending_files.h"
#include "platform/terminal/terminal.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <new>

#ifdef _WIN32
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

static const char* progressCaption; // null: there is no bar
static int shownSteps = -1;
static bool lineShown; // the bar or the status line
static int boxCount;
static std::string renamedPath;
static const char* shownName;
static bool outOfMemorySaid, noticesSilent;

static bool barWanted()
{
#ifdef __EMSCRIPTEN__
    return false; // its C library takes every standard error for a terminal
#else
    static const bool isTerminal = isatty(fileno(stderr)) != 0;
    return isTerminal;
#endif
}

static void wipeBar()
{
    if (lineShown)
        fputs("\r\033[K", stderr);
    lineShown = false;
    shownSteps = -1;
}

void showStatusLine(const char* text)
{
    if (!barWanted())
        return;
    wipeBar();
    fputs(text, stderr);
    fflush(stderr);
    lineShown = *text != 0;
}

void printLines(const std::string& lines)
{
    wipeBar();
    fwrite(lines.data(), 1, lines.size(), stderr);
}

int terminalBoxCount()
{
    return boxCount;
}

bool saidOutOfMemory()
{
    return outOfMemorySaid;
}

void silenceNotices()
{
    noticesSilent = true;
}

void showPathAs(const std::string& path, const char* name)
{
    renamedPath = path;
    shownName = name;
}

static const char* shown(const char* text)
{
    return text && !renamedPath.empty() && renamedPath == text ? shownName : text;
}

void messageBox(const char* text, const char* caption, BoxIcon)
{
    text = shown(text);
    caption = shown(caption);
    wipeBar();
    ++boxCount;
    outOfMemorySaid |= strcmp(text, "Out of memory") == 0;
    if (caption && *caption)
        fprintf(stderr, "message: %s [%s]\n", text, caption);
    else
        fprintf(stderr, "message: %s\n", text);
}

void explainFailure(const char* path, const char* cause)
{
    wipeBar();
    fprintf(stderr, "kbx: %s: %s\n", path, cause);
}

void showNotice(const char* text)
{
    if (noticesSilent)
        return;
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
    lineShown = true;
    static const char full[] = "############################################################################";
    static_assert(sizeof full == progressStepCount + 1);
    int columns = steps / 2; // half the steps of the bar, so that caption and bar fit into 80 columns
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

static void endForLackOfMemory()
{
    messageBox("Out of memory", nullptr, iconStop);
    removePendingFiles();
    _Exit(1);
}

// Before the first static object of the program asks for memory.
__attribute__((constructor(101))) static void installMemoryHandler()
{
    std::set_new_handler(endForLackOfMemory);
}
