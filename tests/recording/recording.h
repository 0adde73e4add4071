// tests/recording/recording.h - a platform that answers dialogs from a script and records every call
#pragma once
#include "platform/boxes.h"

#include <stdint.h>
#include <deque>
#include <map>
#include <string>
#include <vector>

struct RecordedBox
{
    std::string text;
    std::string caption; // "(default)" for that of the operating system
    BoxIcon icon;
    bool operator==(const RecordedBox&) const = default;
};

struct RecordedProgress
{
    std::string caption;
    std::vector<float> fractions;
    bool closed;
};

struct RecordedDialog
{
    bool save;
    std::string filterText, filterPattern, title, defaultExtension, proposed; // "(none)" for null
    uint32_t flags;
    size_t pathRoom, fileTitleRoom;
};

struct RecordedRect
{
    int32_t x, y, width, height;
    bool operator==(const RecordedRect&) const = default;
};

struct Recording
{
    // boxes
    std::vector<RecordedBox> boxes;
    std::vector<std::string> notices;
    std::vector<std::string> causes; // of failures, "PATH: CAUSE"
    std::vector<RecordedProgress> progress;
    int beeps = 0;

    // dialogs: an empty answer, or none left, is Cancel; the file title follows the last separator
    std::deque<std::string> dialogAnswers;
    std::vector<RecordedDialog> dialogs;

    // controls
    std::map<int, bool> menuChecks, menuEnabled, panelChecks;
    std::map<int, std::string> menuTexts, panelTexts;
    std::vector<std::string> filterEntries;
    int filterSelection = -1;
    std::vector<std::string> titles;
    std::vector<std::string> focus; // "main", "panel", "display" in the order given
    int aboutRuns = 0;
    void (*duringAbout)() = nullptr; // what happens while the box is open
    bool mainWindowDestroyed = false;
    std::vector<std::string> remembered; // entered in the list of recent files

    // picture
    int livePictures = 0;
    bool refusePictures = false;
    int32_t refreshRate = 0; // of the screen; 0: unknown
    std::vector<RecordedRect> presented;
    std::vector<uint8_t> copiedPicture; // on the clipboard, rows without padding

    // clock and processor
    uint32_t tick = 0;

    // pages; the address sanitizer watches the bytes of the blocks
    int liveBlocks = 0;
    int allocations = 0;
    size_t liveBytes = 0, peakBytes = 0;
    size_t requestedBytes = 0; // of all blocks, released or not
    int refuseFrom = 0;        // the n-th allocation since the last reset and all later ones are refused; 0: none
    int refuseOnly = 0;        // only the n-th is refused; 0: none
};

extern Recording recorded;

// Starts the record again. Blocks that are not released yet stay counted.
void resetRecording();
