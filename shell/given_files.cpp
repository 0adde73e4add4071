// shell/given_files.cpp - from a path to the command that opens it
#include "shell/given_files.h"

#include "import/dispatch.h"
#include "model/ascii.h"
#include "platform/boxes.h"
#include "platform/file_names.h"
#include "platform/files.h"
#include "shell/commands.h"
#include "shell/loop.h"
#include "shell/model_files.h"
#include "shell/natural_order.h"
#include "shell/scene.h"

#include <string.h>
#include <vector>

static std::string waitingPath; // empty: none

// The neighbour that was tried last, and the model that was shown then.
struct Browsing
{
    std::string shownPath, triedName;
};
static Browsing browsing;

static bool endsWith(const std::string& path, const char* ending)
{
    size_t length = strlen(ending);
    if (path.size() < length)
        return false;
    for (size_t i = 0; i < length; ++i)
    {
        if (asciiLower(path[path.size() - length + i]) != ending[i])
            return false;
    }
    return true;
}

static bool isPicture(const std::string& path)
{
    return endsWith(path, ".jpg") || endsWith(path, ".jpeg");
}

static bool isRkf(const std::string& path)
{
    return endsWith(path, ".rkf");
}

// Opening a pipe could block, so only plain files are tried.
static bool canBeOpened(const std::string& path)
{
    FILE* file = isPlainFile(path.c_str()) ? openFile(path.c_str(), "rb") : nullptr;
    if (file)
        fclose(file);
    else
        messageBox("Error: failed to open", path.c_str(), iconStop);
    return file != nullptr;
}

// Shows the box of a file that has no reader.
static int refuseFormat(const std::string& path)
{
    messageBox("Not supported file format", fileNameOf(path.c_str()), iconStop);
    return 0;
}

int openGivenFile(const std::string& path)
{
    if (!canBeOpened(path))
        return 0;
    if (isPicture(path))
        return loadTextureAt(path.c_str());
    if (isRkf(path))
        return openRkfAt(path.c_str());
    return isModelName(path.c_str()) ? openModelAt(path.c_str()) : refuseFormat(path);
}

void giveFile(const std::string& path)
{
    waitingPath = path;
}

void openWaitingFile()
{
    while (loopState.appRunning && !waitingPath.empty())
    {
        std::string path;
        path.swap(waitingPath); // while it is opened, another one may be given
        if (openGivenFile(path) && !isPicture(path))
            rememberModel();
    }
}

int takeHandedOver(uintptr_t tag, const void* bytes, size_t size)
{
    const auto* text = static_cast<const char*>(bytes);
    if (tag != handOverTag || !text || size < 2 || size > handOverRoom)
        return 0;
    if (strnlen(text, size) != size - 1)
        return 0;
    giveFile(text);
    return 1;
}

int reloadModel()
{
    std::string path = currentFilePath;
    if (path.empty())
    {
        beep();
        return 0;
    }
    ViewState view = frameState.view;
    if (!canBeOpened(path) || !(isRkf(path) ? openRkfMeshAt(path.c_str()) : openMeshAt(path.c_str())))
        return 0;
    frameState.view = view;
    askForRedraw();
    return 1;
}

// The model in a folder whose name is the nearest to the given one in the direction of the step; empty for none.
static std::string nearestModel(const std::string& folder, const std::string& name, int step)
{
    std::vector<std::string> names;
    listNames(folder.empty() ? "." : folder.c_str(), &names);
    std::string nearest;
    for (const std::string& candidate : names)
    {
        if (!isModelName(candidate.c_str()) || compareNaturally(candidate, name) * step <= 0)
            continue;
        bool nearer = nearest.empty() || compareNaturally(candidate, nearest) * step < 0;
        if (nearer && isPlainFile((folder + candidate).c_str()))
            nearest = candidate;
    }
    return nearest;
}

int openNeighbour(int step)
{
    std::string folder = folderOf(currentFilePath), name = fileNameOf(currentFilePath.c_str());
    if (!browsing.triedName.empty() && browsing.shownPath == currentFilePath)
        name = browsing.triedName;
    std::string next = currentFilePath.empty() ? "" : nearestModel(folder, name, step);
    if (next.empty())
    {
        beep();
        return 0;
    }
    browsing = { currentFilePath, next };
    if (!openGivenFile(folder + next))
        return 0;
    browsing = {};
    return 1;
}
