// tests/recording/recording.cpp - a platform that records every call
#include "tests/recording/recording.h"

#include "platform/clock.h"
#include "platform/controls.h"
#include "platform/dialogs.h"
#include "platform/file_names.h"
#include "platform/pages.h"
#include "platform/picture.h"
#include "platform/random.h"
#include "tests/recording/blocks.h"

#include <stdlib.h>
#include <string.h>
#include <algorithm>

Recording recorded;

void resetRecording()
{
    int liveBlocks = recorded.liveBlocks;
    size_t liveBytes = recorded.liveBytes;
    int livePictures = recorded.livePictures;
    recorded = Recording{};
    recorded.liveBlocks = liveBlocks;
    recorded.liveBytes = recorded.peakBytes = liveBytes;
    recorded.livePictures = livePictures;
}

void messageBox(const char* text, const char* caption, BoxIcon icon)
{
    recorded.boxes.push_back({ text, caption ? caption : "(default)", icon });
}

void explainFailure(const char* path, const char* cause)
{
    recorded.causes.push_back(std::string(path) + ": " + cause);
}

void showNotice(const char* text)
{
    recorded.notices.emplace_back(text);
}

void showProgress(const char* caption)
{
    recorded.progress.push_back({ caption, {}, false });
}

void setProgress(float fraction)
{
    if (recorded.progress.empty() || recorded.progress.back().closed)
        abort(); // a bar that is not shown must not move
    recorded.progress.back().fractions.push_back(fraction);
}

void closeProgress()
{
    if (recorded.progress.empty() || recorded.progress.back().closed)
        abort();
    recorded.progress.back().closed = true;
}

void beep()
{
    ++recorded.beeps;
}

static std::string orNone(const char* text)
{
    return text ? text : "(none)";
}

// The 16-bit characters of UTF-8 before a byte: one for each sequence, two for one of four bytes.
static size_t charactersIn(const std::string& text)
{
    size_t count = 0;
    for (char c : text)
    {
        auto byte = static_cast<unsigned char>(c);
        count += (byte & 0xC0) != 0x80;
        count += byte >= 0xF0;
    }
    return count;
}

static std::string cutToCharacters(std::string text, size_t characters)
{
    while (charactersIn(text) > characters)
        text.pop_back();
    return text;
}

static int answerDialog(FileDialog* dialog, bool save)
{
    recorded.dialogs.push_back({ save, orNone(dialog->filterText), orNone(dialog->filterPattern), orNone(dialog->title),
                                 orNone(dialog->defaultExtension), dialog->path, dialog->flags, dialog->pathRoom,
                                 dialog->fileTitle ? dialog->fileTitleRoom : 0 });
    if (recorded.dialogAnswers.empty())
        return 0;
    std::string answer = recorded.dialogAnswers.front();
    recorded.dialogAnswers.pop_front();
    if (answer.empty())
        return 0;
    if (charactersIn(answer) >= dialog->pathRoom)
    {
        messageBox(pathTooLong, "Error", iconStop);
        return 0;
    }
    memcpy(dialog->path, answer.c_str(), answer.size() + 1);
    if (dialog->fileTitle && dialog->fileTitleRoom > 0)
    {
        std::string title = cutToCharacters(fileNameOf(answer.c_str()), dialog->fileTitleRoom - 1);
        memcpy(dialog->fileTitle, title.c_str(), title.size() + 1);
    }
    return 1;
}

int chooseFileToOpen(FileDialog* dialog)
{
    return answerDialog(dialog, false);
}

int chooseFileToSave(FileDialog* dialog)
{
    return answerDialog(dialog, true);
}

void checkMenuItem(int id, int on)
{
    recorded.menuChecks[id] = on != 0;
}

void enableMenuItem(int id, int on)
{
    recorded.menuEnabled[id] = on != 0;
}

void renameMenuItem(int id, const char* text)
{
    recorded.menuTexts[id] = text;
}

void checkPanelBox(int id, int on)
{
    recorded.panelChecks[id] = on != 0;
}

int panelBoxChecked(int id)
{
    return recorded.panelChecks[id];
}

void setPanelText(int id, const char* text)
{
    recorded.panelTexts[id] = text;
}

void clearFilterList()
{
    recorded.filterEntries.clear();
    recorded.filterSelection = -1;
}

void addFilterEntry(const char* text)
{
    recorded.filterEntries.emplace_back(text);
}

void selectFilterEntry(int index)
{
    recorded.filterSelection = index;
}

int selectedFilterEntry()
{
    return recorded.filterSelection;
}

void setWindowTitle(const char* text)
{
    recorded.titles.emplace_back(text);
}

void focusMainWindow()
{
    recorded.focus.emplace_back("main");
}

void focusToolPanel()
{
    recorded.focus.emplace_back("panel");
}

void runAboutBox()
{
    ++recorded.aboutRuns;
    if (recorded.duringAbout)
        recorded.duringAbout();
}

void destroyMainWindow()
{
    recorded.mainWindowDestroyed = true;
}

void rememberFile(const char* path)
{
    recorded.remembered.emplace_back(path);
}

int makePicture(Picture* picture, int32_t widthPixels, int32_t rows)
{
    *picture = {};
    if (recorded.refusePictures || widthPixels <= 0 || rows <= 0)
        return 0;
    picture->bits = static_cast<uint8_t*>(calloc(static_cast<size_t>(rows), static_cast<size_t>(widthPixels) * 3));
    if (!picture->bits)
        return 0;
    picture->widthPixels = widthPixels;
    picture->rows = rows;
    ++recorded.livePictures;
    return 1;
}

void presentPicture(const Picture*, int32_t x, int32_t y, int32_t width, int32_t height)
{
    recorded.presented.push_back({ x, y, width, height });
}

int copyPicture(const Picture* picture, int32_t width, int32_t height)
{
    if (recorded.refusePictures)
        return 0;
    size_t rowBytes = static_cast<size_t>(width) * 3, stride = static_cast<size_t>(picture->widthPixels) * 3;
    recorded.copiedPicture.clear();
    for (int32_t y = 0; y < height; ++y)
    {
        const uint8_t* row = picture->bits + static_cast<size_t>(y) * stride;
        recorded.copiedPicture.insert(recorded.copiedPicture.end(), row, row + rowBytes);
    }
    return 1;
}

void destroyPicture(Picture* picture)
{
    if (picture->bits)
        --recorded.livePictures;
    free(picture->bits);
    *picture = {};
}

int32_t displayRefreshRate()
{
    return recorded.refreshRate;
}

uint64_t systemRandom()
{
    return 1; // every run is the same
}

uint32_t tickCount()
{
    return recorded.tick;
}

void* allocatePages(size_t sizeBytes)
{
    ++recorded.allocations;
    if (recorded.refuseFrom && recorded.allocations >= recorded.refuseFrom)
        return nullptr;
    if (recorded.refuseOnly && recorded.allocations == recorded.refuseOnly)
        return nullptr;
    constexpr size_t blockBytesLimit = size_t{ 1 } << 40;
    void* block = sizeBytes > 0 && sizeBytes <= blockBytesLimit ? takeBlock(sizeBytes) : nullptr;
    if (!block)
        return nullptr;
    ++recorded.liveBlocks;
    recorded.liveBytes += sizeBytes;
    recorded.requestedBytes += sizeBytes;
    if (recorded.liveBytes > recorded.peakBytes)
        recorded.peakBytes = recorded.liveBytes;
    return block;
}

// The first bytes are not 0, so that a reader that relies on them is noticed.
void* allocateUnclearedPages(size_t sizeBytes)
{
    constexpr size_t markedRoom = 4096; // more would take most of a fuzzer's time
    void* block = allocatePages(sizeBytes);
    if (block)
        memset(block, 0xA5, std::min(sizeBytes, markedRoom));
    return block;
}

void releasePages(void* block)
{
    if (!block)
        return;
    recorded.liveBytes -= giveBlockBack(block);
    --recorded.liveBlocks;
}
