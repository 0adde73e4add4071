// shell/undo.cpp - two stacks of kept meshes
#include "shell/undo.h"

#include "model/mesh_copy.h"
#include "platform/boxes.h"
#include "shell/loop.h"
#include "shell/panel.h"
#include "shell/scene.h"
#include "shell/title.h"

#include <deque>

struct KeptMesh
{
    Mesh* mesh;
    size_t bytes;
    FilterChoice filter; // of the panel while the mesh was shown
    const MeshTool* tool;
};
using KeptMeshes = std::deque<KeptMesh>; // the oldest first

struct UndoState
{
    KeptMeshes done;   // meshes before the tools that were run
    KeptMeshes undone; // meshes after the tools that were taken back
    size_t bytes;      // of both
    size_t bytesLimit;
    bool toldUnkept; // the title has said that a tool cannot be taken back
};

static UndoState undo = { {}, {}, 0, undoBytesLimit, false };

static void dropOldest(KeptMeshes* kept)
{
    undo.bytes -= kept->front().bytes;
    freeKeptMesh(kept->front().mesh);
    kept->pop_front();
}

static void dropAll(KeptMeshes* kept)
{
    while (!kept->empty())
        dropOldest(kept);
}

// Drops what is farthest from the mesh that is shown: first what was taken back longest ago, then the oldest tool.
// Returns false when nothing is left to drop.
static bool dropOne()
{
    KeptMeshes* kept = undo.undone.empty() ? &undo.done : &undo.undone;
    if (kept->empty())
        return false;
    dropOldest(kept);
    return true;
}

static void keep(KeptMeshes* kept, Mesh* mesh, const FilterChoice& filter, const MeshTool* tool)
{
    kept->push_back({ mesh, meshBytes(mesh), filter, tool });
    undo.bytes += kept->back().bytes;
}

// Copies a mesh, with older copies dropped as far as the limit or the operating system demands it. Null when even that
// is not enough.
static Mesh* makeCopy(const Mesh* mesh)
{
    size_t bytes = copyBytes(mesh);
    if (bytes > undo.bytesLimit)
        return nullptr;
    while (undo.bytes + bytes > undo.bytesLimit && dropOne())
    {
    }
    Mesh* copy = copyMesh(mesh);
    while (!copy && dropOne())
        copy = copyMesh(mesh);
    return copy;
}

// Without its copy, a tool stands between the mesh that is shown and all earlier ones.
static void forgetUnkept()
{
    dropAll(&undo.done);
    dropAll(&undo.undone);
    if (!undo.toldUnkept)
        holdTitle(programName + (": " + currentFileName) + " - the last tool cannot be undone");
    undo.toldUnkept = true;
}

void runTool(const MeshTool* tool)
{
    Mesh* mesh = currentMesh();
    FilterChoice filter = filterChoice();
    Mesh* before = makeCopy(mesh);
    tool->run(mesh);
    if (!before)
    {
        forgetUnkept();
        return;
    }
    if (meshesAreEqual(before, mesh))
    {
        freeKeptMesh(before);
        return;
    }
    dropAll(&undo.undone);
    keep(&undo.done, before, filter, tool);
}

// Exchanges the mesh that is shown for the last one of a stack and keeps it in the other.
static int exchange(KeptMeshes* from, KeptMeshes* to, const char* what)
{
    Mesh* shown = currentMesh();
    if (from->empty() || !shown)
    {
        beep();
        return 0;
    }
    KeptMesh kept = from->back();
    keepMesh(shown); // first, so that the memory table has room for the other
    if (!takeMeshBack(kept.mesh))
    {
        takeMeshBack(shown);
        beep();
        return 0;
    }
    from->pop_back();
    undo.bytes -= kept.bytes;
    keep(to, shown, filterChoice(), kept.tool);
    modelList.meshes[0] = kept.mesh;
    showOtherMesh(shown, kept.filter);
    while (undo.bytes > undo.bytesLimit && dropOne())
    {
    }
    holdTitle(programName + (": " + currentFileName) + " - " + what + " " + kept.tool->name);
    askForRedraw();
    return 1;
}

int undoTool()
{
    return exchange(&undo.done, &undo.undone, "undone:");
}

int redoTool()
{
    return exchange(&undo.undone, &undo.done, "done again:");
}

void forgetUndo()
{
    dropAll(&undo.done);
    dropAll(&undo.undone);
    undo.toldUnkept = false;
}

void forgetUndoAndLimit(size_t bytes)
{
    forgetUndo();
    undo.bytesLimit = bytes;
}
