// import/open_dialog.cpp - the file dialog of the readers that have one of their own
#include "import/open_dialog.h"

#include "platform/dialogs.h"

int openByDialog(Mesh* mesh, const char* filterText, const char* filterPattern,
                 int (*load)(Mesh* mesh, const char* path))
{
    constexpr size_t pathCharacters = 128, titleCharacters = 32;
    char path[dialogBytes(pathCharacters)] = "", title[dialogBytes(titleCharacters)] = "";
    FileDialog dialog = {
        .filterText = filterText,
        .filterPattern = filterPattern,
        .title = nullptr,
        .defaultExtension = nullptr,
        .flags = 0,
        .path = path,
        .pathRoom = pathCharacters,
        .fileTitle = title,
        .fileTitleRoom = titleCharacters,
    };
    return chooseFileToOpen(&dialog) && load(mesh, path);
}
