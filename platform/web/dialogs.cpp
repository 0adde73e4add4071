// platform/web/dialogs.cpp - the open and save dialogs of the page
//
// The program runs in a worker, which cannot wait for an answer. A dialog without one asks the page and counts as
// cancelled; the page asks the user and runs the same command again with the answer.
#include "platform/dialogs.h"
#include "platform/boxes.h"
#include "platform/file_names.h"
#include "platform/web/host.h"
#include "platform/web/page_state.h"

#include <string.h>
#include <string>
#include <utility>

static void tellLines(const char* what, const FileDialog& dialog)
{
    std::string lines = dialog.title ? dialog.title : "";
    for (const char* text : { dialog.filterText, dialog.filterPattern, static_cast<const char*>(dialog.path) })
        lines += std::string("\n") + text;
    tellPage(what, 0, 0, lines.c_str());
}

static int answer(FileDialog* dialog, const std::string& path)
{
    if (path.size() >= dialog->pathRoom)
    {
        messageBox(pathTooLong, "Error", iconStop);
        return 0;
    }
    memcpy(dialog->path, path.c_str(), path.size() + 1);
    if (dialog->fileTitle)
    {
        std::string title = std::string(fileNameOf(path.c_str())).substr(0, dialog->fileTitleRoom - 1);
        memcpy(dialog->fileTitle, title.c_str(), title.size() + 1);
    }
    return 1;
}

int chooseFileToOpen(FileDialog* dialog)
{
    std::string path = std::exchange(pageState.chosenPath, "");
    if (!path.empty())
        return answer(dialog, path);
    tellLines("ask-open", *dialog);
    return 0;
}

int chooseFileToSave(FileDialog* dialog)
{
    std::string path = std::exchange(pageState.chosenPath, "");
    if (path.empty())
    {
        tellLines("ask-save", *dialog);
        return 0;
    }
    bool named = strchr(fileNameOf(path.c_str()), '.') != nullptr;
    if (!named && dialog->defaultExtension)
        path += std::string(".") + dialog->defaultExtension;
    return answer(dialog, path);
}
