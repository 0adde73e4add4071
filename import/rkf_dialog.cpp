// import/rkf_dialog.cpp - RKF files by name, given or chosen by the user
#include "import/rkf.h"
#include "platform/boxes.h"
#include "platform/dialogs.h"
#include "platform/files.h"

#include <string.h>

static int reportFileError()
{
    messageBox("File Error", "Error", iconNone);
    return 0;
}

int LoadRkfFile(Mesh* mesh, const char* path)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    int ok = ReadRkf(mesh, file);
    fclose(file);
    return ok ? 1 : reportFileError();
}

int saveRkfPath(const Mesh* mesh, const char* path, int omitMaterials)
{
    if (!rkfCanHold(mesh))
        return reportFileError();
    FILE* file = openFile(path, "wb");
    if (!file)
        return 0;
    int ok = WriteRkf(mesh, file, omitMaterials);
    if (fclose(file) != 0) // the last bytes reach the disk here, or do not
        ok = 0;
    return ok ? 1 : reportFileError();
}

// ".rkf" in place of everything from the last '.'; a '.' at the very front starts the name.
static void proposeName(char (&path)[rkfPathRoom])
{
    static const char extension[] = ".rkf";
    path[rkfPathCharacters - sizeof extension] = 0; // leaves room for it
    char* dot = strrchr(path, '.');
    char* end = dot && dot != path ? dot : path + strlen(path);
    memcpy(end, extension, sizeof extension);
}

int RkfFileDialog(Mesh* mesh, char (&path)[rkfPathRoom], char (&title)[rkfPathRoom], int save, int omitMaterials)
{
    if (save)
        proposeName(path);
    else
        path[0] = 0;
    title[0] = 0;
    FileDialog dialog = {
        .filterText = "rkf Files(*.rkf)",
        .filterPattern = "*.rkf",
        .title = nullptr,
        .defaultExtension = nullptr,
        .flags = save ? dialogOverwritePrompt : 0,
        .path = path,
        .pathRoom = rkfPathCharacters,
        .fileTitle = title,
        .fileTitleRoom = rkfPathCharacters,
    };
    if (save)
        return chooseFileToSave(&dialog) && saveRkfPath(mesh, path, omitMaterials);
    return chooseFileToOpen(&dialog) && LoadRkfFile(mesh, path);
}
