// shell/panel.cpp - one row for each control of the tool panel
#include "shell/panel.h"

#include "model/mesh_copy.h"
#include "platform/boxes.h"
#include "platform/controls.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/loop.h"
#include "shell/lux_export.h"
#include "shell/scene.h"
#include "shell/undo.h"
#include "tools/filter.h"
#include "tools/tools.h"

#include <stdio.h>

static int filterOn;        // "By Group" is ticked
static int filterSelection; // the last list index chosen while it was

void fillFilterList(const Mesh* mesh)
{
    if (!mesh)
        return;
    clearFilterList();
    for (int32_t i = 0; i < filterEntryCount(mesh); ++i)
        addFilterEntry(filterEntryName(mesh, i));
    selectFilterEntry(0);
    filterSelection = 0;
    filterOn = 0;
    checkPanelBox(ID_BY_GROUP, 0);
}

FilterChoice filterChoice()
{
    return { filterOn, filterSelection };
}

static int filteredEntry(const FilterChoice& choice)
{
    return choice.on ? choice.selection : 0;
}

void showOtherMesh(const Mesh* before, const FilterChoice& kept)
{
    Mesh* mesh = currentMesh();
    if (!meshNamesAreEqual(before, mesh))
    {
        fillFilterList(mesh);
        filterOn = kept.on;
        filterSelection = kept.selection;
        checkPanelBox(ID_BY_GROUP, kept.on);
        selectFilterEntry(filteredEntry(kept));
    }
    else if (filteredEntry(filterChoice()) != filteredEntry(kept))
        applyFilter(mesh, filteredEntry(filterChoice()));
    fitModelList(&modelList);
    updateStatistics();
}

static void setPanelCount(int id, int32_t count)
{
    char text[16];
    snprintf(text, sizeof text, "%d", count);
    setPanelText(id, text);
}

void updateStatistics()
{
    const Mesh* mesh = currentMesh();
    if (!mesh)
        return;
    setPanelCount(ID_VERT_COUNT, mesh->vertexCount);
    setPanelCount(ID_FACE_COUNT, mesh->liveFaceCount);
    setPanelCount(ID_UV_COUNT, mesh->uvCount);
    setPanelCount(ID_LINE_COUNT, mesh->lineCount);
    setPanelCount(ID_GROUP_COUNT, mesh->groupCount);
    setPanelCount(ID_MATERIAL_COUNT, mesh->materialCount);
}

void initPanel()
{
    uint32_t flags = choices.render.renderFlags;
    checkPanelBox(ID_WIREFRAME, (flags & renderWireframe) != 0);
    checkPanelBox(ID_BACKCULLED, (flags & renderBackCulled) != 0);
    checkPanelBox(ID_TEXTURED, (flags & renderTextured) != 0);
    checkPanelBox(ID_VERTEX_COLOUR, (flags & renderVertexColour) != 0);
    // The surface flags above the shadows' bit count too. Their own boxes start unticked, and without a tick here
    // nothing would show that one of them is on.
    checkPanelBox(ID_SHADOWS, flags >= renderShadows);
    fillFilterList(currentMesh());
    updateStatistics();
}

static void filterBy(int index)
{
    if (Mesh* mesh = currentMesh())
    {
        applyFilter(mesh, index);
        fitModelList(&modelList);
    }
    askForRedraw();
}

static void selectFilter(int)
{
    if (filterOn)
    {
        filterSelection = selectedFilterEntry();
        filterBy(filterSelection);
    }
    else
        selectFilterEntry(0);
    focusMainWindow();
}

static void switchFilter(int)
{
    filterOn = panelBoxChecked(ID_BY_GROUP);
    int index = filterOn ? filterSelection : 0;
    selectFilterEntry(index);
    filterBy(index);
}

// The check boxes that stand for one bit each.
static void switchFlag(int id)
{
    static const struct
    {
        int id;
        uint32_t flag;
    } flags[] = {
        { ID_WIREFRAME, renderWireframe }, { ID_BACKCULLED, renderBackCulled },      { ID_TEXTURED, renderTextured },
        { ID_SHADOWS, renderShadows },     { ID_VERTEX_COLOUR, renderVertexColour }, { ID_ROUGH, renderRough },
        { ID_MOON, renderMoon },
    };
    for (const auto& row : flags)
    {
        if (row.id == id)
            chooseRenderFlag(&choices, row.flag, panelBoxChecked(id) != 0);
    }
    askForRedraw();
}

static void switchTextured(int id)
{
    if (panelBoxChecked(id))
        checkPanelBox(ID_WIREFRAME, 0);
    switchFlag(id);
}

static void switchMetallic(int id)
{
    chooseMetallic(&choices, panelBoxChecked(id) != 0);
    askForRedraw();
}

// Weld's button runs weld-near while "Exact Weld" is off.
static const MeshTool* toolOfButton(int id)
{
    return id == ID_WELD && !choices.exactWeld ? findToolByName("weld-near") : findToolByButton(id);
}

// Returns 1, or 0 when there is no tool to run.
static int pressTool(const MeshTool* tool)
{
    Mesh* mesh = currentMesh();
    if (!tool || !mesh)
        return tool != nullptr;
    runTool(tool);
    if (tool->changesBounds)
        fitModelList(&modelList);
    if (tool->changesGroups)
        fillFilterList(mesh);
    if (tool->changesCounts)
        updateStatistics();
    askForRedraw();
    return 1;
}

static void exportLux(int)
{
    const Mesh* mesh = currentMesh();
    if (!mesh || !exportLuxRender(mesh, currentModelPath()))
        messageBox("Failed to export", "LuxRender Export", iconNone);
    askForRedraw();
}

static void focusPanel(int)
{
    focusToolPanel();
}

struct PanelCommand
{
    int id;
    void (*run)(int id);
};

constexpr int idEnter = 1; // the default button, which only takes the focus

static const PanelCommand panelCommands[] = {
    { idEnter, focusPanel },         { ID_FILTER_LIST, selectFilter }, { ID_BY_GROUP, switchFilter },
    { ID_WIREFRAME, switchFlag },    { ID_BACKCULLED, switchFlag },    { ID_TEXTURED, switchTextured },
    { ID_SHADOWS, switchFlag },      { ID_VERTEX_COLOUR, switchFlag }, { ID_ROUGH, switchFlag },
    { ID_METALLIC, switchMetallic }, { ID_MOON, switchFlag },          { ID_LUX_EXPORT, exportLux },
};

int runPanelCommand(int id)
{
    for (const PanelCommand& command : panelCommands)
    {
        if (command.id == id)
        {
            command.run(id);
            return 1;
        }
    }
    return pressTool(toolOfButton(id));
}
