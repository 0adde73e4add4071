// platform/win32/dialogs.cpp - the open and save dialogs of Windows
#include "platform/dialogs.h"
#include "platform/boxes.h"
#include "platform/win32/handles.h"
#include "platform/win32/names.h"

#include <cderr.h>
#include <commdlg.h>
#include <string.h>

static DWORD flagsOf(uint32_t flags)
{
    return (flags & dialogOverwritePrompt ? OFN_OVERWRITEPROMPT : 0u) |
           (flags & dialogHideReadOnly ? OFN_HIDEREADONLY : 0u);
}

// Stores a text as UTF-8, cut to a number of characters that includes the terminator.
static void storeText(const std::wstring& wide, char* text, size_t room)
{
    std::string narrow = utf8FromWide(wide.substr(0, room - 1).c_str());
    memcpy(text, narrow.c_str(), narrow.size() + 1);
}

static std::wstring withoutFolder(const std::wstring& path)
{
    size_t separator = path.find_last_of(L"\\/:");
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

// Shows the dialog. One that refuses the proposed name, of a file that has no name Windows allows, opens without it.
static BOOL showRequest(OPENFILENAMEW* request, BOOL(WINAPI* show)(OPENFILENAMEW*))
{
    BOOL chosen = show(request);
    if (!chosen && CommDlgExtendedError() == FNERR_INVALIDFILENAME)
    {
        request->lpstrFile[0] = 0;
        chosen = show(request);
    }
    if (!chosen && CommDlgExtendedError() == FNERR_BUFFERTOOSMALL)
        messageBox(pathTooLong, "Error", iconStop);
    return chosen;
}

static int ask(FileDialog* dialog, BOOL(WINAPI* show)(OPENFILENAMEW*))
{
    std::wstring filter =
        wideFromUtf8(dialog->filterText) + L'\0' + wideFromUtf8(dialog->filterPattern) + L'\0' + L'\0';
    std::wstring dialogTitle = wideFromUtf8(dialog->title ? dialog->title : "");
    std::wstring extension = wideFromUtf8(dialog->defaultExtension ? dialog->defaultExtension : "");
    std::wstring path = wideFromUtf8(dialog->path).substr(0, dialog->pathRoom - 1);
    path.resize(dialog->pathRoom);

    OPENFILENAMEW request = {};
    request.lStructSize = sizeof request;
    request.hwndOwner = mainWindow;
    request.lpstrFilter = filter.c_str();
    request.nFilterIndex = 1;
    request.lpstrFile = path.data();
    request.nMaxFile = static_cast<DWORD>(path.size());
    request.lpstrTitle = dialog->title ? dialogTitle.c_str() : nullptr;
    request.lpstrDefExt = dialog->defaultExtension ? extension.c_str() : nullptr;
    request.Flags = flagsOf(dialog->flags);
    if (!showRequest(&request, show))
        return 0;
    path.resize(wcslen(path.c_str()));
    storeText(path, dialog->path, dialog->pathRoom);
    if (dialog->fileTitle)
        storeText(withoutFolder(path), dialog->fileTitle, dialog->fileTitleRoom);
    return 1;
}

int chooseFileToOpen(FileDialog* dialog)
{
    return ask(dialog, GetOpenFileNameW);
}

int chooseFileToSave(FileDialog* dialog)
{
    return ask(dialog, GetSaveFileNameW);
}
