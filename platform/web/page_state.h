// platform/web/page_state.h - what the program knows of the page's controls; shell/web/ tells it what the user did
#pragma once
#include <map>
#include <string>

struct PageState
{
    std::map<int, int> panelBoxes; // by identifier: 1 when ticked
    int selectedEntry;             // of the filter list
    std::string chosenPath;        // the answer to the next file dialog; empty: cancelled
    int refreshRate;               // of the screen, in frames a second; 0: unknown
    int boxCount;                  // message boxes so far
    bool outOfMemory;              // one of them was "Out of memory"; whoever asks clears it before
};

extern PageState pageState;
