// shell/web/describe.cpp - the tables as JSON
#include "shell/web/describe.h"

#include "model/memory.h"
#include "platform/web/host.h"
#include "resources/controls.h"
#include "shell/keys.h"
#include "shell/scene.h"

#include <emscripten/heap.h>
#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

static Json entryJson(const MenuEntry& entry)
{
    if (!entry.text)
        return Json::object();
    return { { "text", entry.text }, { "id", entry.id }, { "disabled", entry.disabled } };
}

static Json menusJson()
{
    Json all = Json::array();
    for (const Menu& menu : menus)
    {
        Json entries = Json::array();
        for (const MenuEntry& entry : menu.entries)
            entries.push_back(entryJson(entry));
        all.push_back({ { "text", menu.text }, { "entries", entries } });
    }
    return all;
}

static const char* kindName(PanelControlKind kind)
{
    return kind == panelBox ? "box" : kind == panelButton ? "button" : "count";
}

static Json panelJson()
{
    Json all = Json::array();
    for (const PanelGroup& group : panelGroups)
    {
        Json controls = Json::array();
        for (const PanelControl& control : group.controls)
            controls.push_back({ { "text", control.text }, { "id", control.id } });
        all.push_back({ { "text", group.text },
                        { "kind", kindName(group.kind) },
                        { "listId", group.listId },
                        { "controls", controls } });
    }
    return all;
}

static Json keysJson()
{
    Json all = Json::array();
    for (const KeyCommand& key : keyCommands())
    {
        all.push_back(
            { { "key", key.key }, { "modifiers", key.modifiers }, { "name", key.name }, { "help", key.help } });
    }
    return all;
}

void tellTables()
{
    Json tables = { { "menus", menusJson() }, { "panel", panelJson() }, { "keys", keysJson() } };
    tellPage("tables", 0, 0, tables.dump().c_str());
}

static int blocksInUse()
{
    int count = 0;
    for (int32_t i = 0; i < memoryTable.highWater; ++i)
        count += memoryTable.entries[i].address != nullptr;
    return count;
}

void tellState()
{
    const ViewState& view = frameState.view;
    Json rotation = Json::array();
    for (int i = 0; i < 9; ++i)
        rotation.push_back(view.rotation.m[i / 3 * 4 + i % 3]);
    Json state = { { "width", frameState.displayWidth },
                   { "height", frameState.displayHeight },
                   { "rotation", rotation },
                   { "zoom", view.zoom },
                   { "spins", frameState.continuousRedraw != 0 },
                   { "blocks", blocksInUse() },
                   { "memory", emscripten_get_heap_size() } };
    tellPage("state", 0, 0, state.dump().c_str());
}
