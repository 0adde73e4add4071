// shell/model_files.cpp - file commands
#include "shell/model_files.h"

#include "import/dispatch.h"
#include "import/rkf.h"
#include "platform/controls.h"
#include "platform/file_names.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/file_dialogs.h"
#include "shell/panel.h"
#include "shell/scene.h"
#include "shell/undo.h"

// Makes a mesh that has been read from a file the current one, which the list then owns: installs it, names it by the
// path, refills the panel, resets the view's rotations and sets the title.
static void showLoadedMesh(Mesh* mesh, const char* path)
{
    forgetUndo();
    installMesh(&modelList, mesh);
    nameModel(fileNameOf(path), path);
    fillFilterList(mesh);
    updateStatistics();
    resetViewRotations(&frameState.view);
    showFileTitle();
}

int openMeshInto(Mesh* mesh, const char* path)
{
    if (!readModelFile(mesh, path, { choices.keyframes3ds != 0 }))
    {
        freeMesh(mesh);
        return 0;
    }
    showLoadedMesh(mesh, path);
    return 1;
}

int openMeshAt(const char* path)
{
    Mesh* mesh = createMesh("prop");
    return mesh && openMeshInto(mesh, path);
}

int openRkfMeshAt(const char* path)
{
    Mesh* mesh = createMesh("prop");
    if (!mesh)
        return 0;
    if (!LoadRkfFile(mesh, path))
    {
        freeMesh(mesh);
        return 0;
    }
    showLoadedMesh(mesh, path);
    return 1;
}

void rememberModel()
{
    rememberFile(currentFilePath.c_str());
}

int openMeshFile()
{
    std::string path;
    if (!chooseModelToOpen(&path) || !openMeshAt(path.c_str()))
        return 0;
    rememberModel();
    return 1;
}

static void selectMaterialsOf(const Mesh* mesh)
{
    if (mesh->materialCount == 0)
        return;
    checkMenuItem(ID_PRESET_BRASS + choices.materialPreset, 0);
    checkMenuItem(ID_PRESET_PROP, 1);
    choosePreset(&choices, presetProp);
}

int readRkfFile()
{
    Mesh* mesh = createMesh("prop");
    if (!mesh)
        return 0;
    std::string path, title;
    if (!RkfFileDialog(mesh, &path, &title, false, false))
    {
        freeMesh(mesh);
        return 0;
    }
    showLoadedMesh(mesh, path.c_str());
    rememberModel();
    selectMaterialsOf(mesh);
    return 1;
}

int readRkfFileAt(const char* path)
{
    if (!openRkfMeshAt(path))
        return 0;
    selectMaterialsOf(currentMesh());
    return 1;
}

int saveRkfFile()
{
    Mesh* mesh = currentMesh();
    std::string path = currentFileName, title;
    if (!mesh || mesh->lineCount != 0 || !RkfFileDialog(mesh, &path, &title, true, false))
        return 0;
    nameModel(title, path);
    rememberModel();
    showSavedTitle();
    return 1;
}

static int exportObjFile(const Mesh* mesh)
{
    std::string name = currentFileName, path;
    if (!SaveObjFile(mesh, &name, &path))
        return 0;
    nameModel(name, path);
    rememberModel();
    return 1;
}

static int exportPropFile(const Mesh* mesh)
{
    PreviewSource preview = { frameBuffer.picture.bits, frameState.displayWidth, frameState.displayHeight,
                              frameBuffer.pitch * 3 };
    return savePoserProp(mesh, currentFileName, true, &preview);
}

int exportMesh(ExportKind kind)
{
    const Mesh* mesh = currentMesh();
    if (!mesh || !(kind == exportObj ? exportObjFile(mesh) : exportPropFile(mesh)))
        return 0;
    showSavedTitle();
    return 1;
}
