// platform/web/boxes.cpp - message boxes, notices and the progress bar of the page
//
// The program runs in a worker, which cannot wait for the page. Boxes come one after another on the page, and the
// program goes on: no answer changes what it does next.
#include "platform/boxes.h"
#include "platform/web/host.h"
#include "platform/web/page_state.h"

#include <string.h>
#include <string>

static int shownSteps;

// The page gets both texts in one, the caption first.
void messageBox(const char* text, const char* caption, BoxIcon icon)
{
    ++pageState.boxCount;
    pageState.outOfMemory |= strcmp(text, "Out of memory") == 0;
    std::string texts = caption ? caption : "Error";
    texts += '\n';
    texts += text;
    tellPage("box", 0, icon == iconStop, texts.c_str());
}

void explainFailure(const char*, const char*) {}

void showNotice(const char* text)
{
    tellPage("notice", 0, 0, text);
}

void showProgress(const char* caption)
{
    shownSteps = 0;
    tellPage("progress", 0, progressStepCount, caption);
}

void setProgress(float fraction)
{
    int steps = progressSteps(fraction);
    if (steps == shownSteps)
        return;
    shownSteps = steps;
    tellPage("progress-steps", 0, steps, nullptr);
}

void closeProgress()
{
    tellPage("progress-close", 0, 0, nullptr);
}

void beep()
{
    tellPage("beep", 0, 0, nullptr);
}
