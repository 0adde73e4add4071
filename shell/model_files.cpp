// shell/model_files.cpp - file commands
#include "shell/model_files.h"

#include "export/obj.h"
#include "export/prop.h"
#include "import/dispatch.h"
#include "import/rkf.h"
#include "model/settings.h"
#include "platform/controls.h"
#include "platform/dialogs.h"
#include "platform/file_names.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/scene.h"

#include <stdio.h>

constexpr size_t openPathCharacters = 128;
constexpr size_t openTitleCharacters = 32;

int openMeshFile()
{
    Mesh* mesh = createMesh("prop");
    if (!mesh)
        return 0;
    char path[dialogBytes(openPathCharacters)] = "";
    char title[dialogBytes(openTitleCharacters)] = "";
    FileDialog dialog = {
        .filterText = "*.obj *.3ds *.dxf *.ply *.pp2 *.hr2 *.cr2 *.off",
        .filterPattern = "*.obj;*.3ds;*.dxf;*.ply;*.pp2;*.hr2;*.cr2;*.off",
        .title = nullptr,
        .defaultExtension = nullptr,
        .flags = 0,
        .path = path,
        .pathRoom = openPathCharacters,
        .fileTitle = title,
        .fileTitleRoom = openTitleCharacters,
    };
    if (!chooseFileToOpen(&dialog) || !readModelFile(mesh, path, { choices.keyframes3ds != 0 }))
    {
        freeMesh(mesh);
        return 0;
    }
    showLoadedMesh(mesh, fileNameOf(path));
    return 1;
}

static void selectPropMaterial()
{
    checkMenuItem(ID_PRESET_BRASS + choices.materialPreset, 0);
    checkMenuItem(ID_PRESET_PROP, 1);
    choosePreset(&choices, presetProp);
}

int readRkfFile()
{
    Mesh* mesh = createMesh("prop");
    if (!mesh)
        return 0;
    char path[rkfPathRoom] = "";
    char title[rkfPathRoom] = "";
    if (!RkfFileDialog(mesh, path, title, 0, 0))
    {
        freeMesh(mesh);
        return 0;
    }
    showLoadedMesh(mesh, title);
    if (mesh->materialCount != 0)
        selectPropMaterial();
    return 1;
}

int saveRkfFile()
{
    Mesh* mesh = currentMesh();
    if (!mesh || mesh->lineCount != 0)
        return 0;
    char path[rkfPathRoom];
    char title[rkfPathRoom] = "";
    snprintf(path, sizeof path, "%.*s", static_cast<int>(rkfPathRoom - 1), currentFileName);
    if (!RkfFileDialog(mesh, path, title, 1, 0))
        return 0;
    snprintf(currentFileName, sizeof currentFileName, "%s", title);
    showSavedTitle();
    return 1;
}

int exportMesh(ExportKind kind)
{
    const Mesh* mesh = currentMesh();
    if (!mesh)
        return 0;
    PreviewSource preview = { frameBuffer.picture.bits, frameState.displayWidth, frameState.displayHeight,
                              frameBuffer.pitch * 3 };
    int ok = kind == exportObj ? SaveObjFile(mesh, currentFileName, sizeof currentFileName)
                               : savePoserProp(mesh, currentFileName, 1, &preview);
    if (ok)
        showSavedTitle();
    return ok;
}
