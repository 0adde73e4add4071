// tools/filter.cpp - the list of groups and materials, and hiding the faces of all entries except one
#include "tools/filter.h"

#include "platform/boxes.h"

int32_t filterEntryCount(const Mesh* mesh)
{
    return mesh->groupCount + mesh->materialCount + 2;
}

const char* filterEntryName(const Mesh* mesh, int32_t index)
{
    if (index == 0)
        return "All Groups";
    if (index <= mesh->groupCount)
        return mesh->groupNames[index - 1];
    if (index == mesh->groupCount + 1)
        return "All Materials";
    return mesh->materialNames[index - mesh->groupCount - 2];
}

static void showAllFaces(Mesh* mesh)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        mesh->faceAttributes[f] &= ~faceHidden;
}

// Whether a face belongs to a group or a material of the list.
static bool matchesEntry(const Mesh* mesh, uint32_t attributes, int32_t index)
{
    bool byMaterial = index > mesh->groupCount + 1;
    int32_t entry = byMaterial ? static_cast<int32_t>(faceMaterial(attributes)) + mesh->groupCount + 2
                               : static_cast<int32_t>(faceGroup(attributes)) + 1;
    return entry == index;
}

int32_t filterEntryFaces(const Mesh* mesh, int32_t index)
{
    int32_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        count += !(attributes & faceDeleted) && (index == 0 || matchesEntry(mesh, attributes, index));
    }
    return count;
}

void removeHiddenFaces(Mesh* mesh)
{
    mesh->liveFaceCount = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t& attributes = mesh->faceAttributes[f];
        if ((attributes & (faceHidden | faceDeleted)) == faceHidden)
        {
            bool beginsLine = (attributes & faceLine) && (attributes & (faceHidden - 1)) >> faceLinePointsShift;
            mesh->lineCount -= beginsLine;
            attributes = (attributes & ~faceHidden) | faceDeleted;
        }
        mesh->liveFaceCount += isSurface(attributes);
    }
}

// Shows the faces of one entry and hides the others. Returns how many faces the entry has.
static int32_t showEntry(Mesh* mesh, int32_t index)
{
    int32_t shown = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t& attributes = mesh->faceAttributes[f];
        if (attributes & faceDeleted)
            continue;
        bool matches = matchesEntry(mesh, attributes, index);
        attributes = matches ? attributes & ~faceHidden : attributes | faceHidden;
        shown += matches;
    }
    return shown;
}

void applyFilter(Mesh* mesh, int32_t index)
{
    if (!mesh)
        return;
    if (index == 0)
    {
        showAllFaces(mesh);
        computeBounds(mesh);
        return;
    }
    if (showEntry(mesh, index) == 0)
    {
        showAllFaces(mesh);
        beep();
    }
    computeVisibleBounds(mesh);
}
