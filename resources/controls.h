// resources/controls.h - the menu and the tool panel: texts, identifiers, order and groups, for every window
//
// make_controls writes Windows' menu and panel from it, and the Linux window builds its own when it starts. An '&'
// stands before the letter that chooses an entry from the keyboard.
#pragma once
#include "ids.h"

#include <span>

struct MenuEntry
{
    const char* text; // null: a separator
    int id;
    bool disabled; // at start
};

struct Menu
{
    const char* text;
    std::span<const MenuEntry> entries;
};

enum PanelControlKind
{
    panelBox,    // a check box
    panelButton, // buttons stand in rows of two
    panelCount   // a text that does not change, and a number at the right
};

struct PanelControl
{
    const char* text;
    int id;
};

struct PanelGroup
{
    const char* text;
    PanelControlKind kind;
    int listId; // of the list above the controls; 0: none
    std::span<const PanelControl> controls;
};

namespace controlTables
{
constexpr MenuEntry separator = { nullptr, 0, false };

inline constexpr MenuEntry file[] = {
    { "Open mesh File", ID_OPEN_MESH, false },  separator, { "Export as obj", ID_EXPORT_OBJ, false },
    { "Export as pp2", ID_EXPORT_PP2, false },  separator, { "Save Image", ID_SAVE_IMAGE, false },
    { "Load texture", ID_LOAD_TEXTURE, false }, separator, { "Read RKF", ID_READ_RKF, false },
    { "Save RKF", ID_SAVE_RKF, false },         separator, { "E&xit", ID_EXIT, false },
};
inline constexpr MenuEntry texture[] = {
    { "Wood", ID_TEXTURE_WOOD, false },
    { "Metal", ID_TEXTURE_METAL, false },
    { "Pattern", ID_TEXTURE_PATTERN, false },
    { "User", ID_TEXTURE_USER, true },
};
inline constexpr MenuEntry lights[] = {
    { "&Light 1", ID_LIGHT_1, false },
    { "&Light 2", ID_LIGHT_2, false },
    { "&Light 3", ID_LIGHT_3, false },
};
inline constexpr MenuEntry material[] = {
    { "Brass", ID_PRESET_BRASS, false },        { "Wood", ID_PRESET_WOOD, false },
    { "Pewter", ID_PRESET_PEWTER, false },      { "Silver", ID_PRESET_SILVER, false },
    { "Gold", ID_PRESET_GOLD, false },          { "Green", ID_PRESET_GREEN, false },
    { "Chalk", ID_PRESET_CHALK, false },        { "Brick", ID_PRESET_BRICK, false },
    { "Crystal", ID_PRESET_CRYSTAL, false },    { "White", ID_PRESET_WHITE, false },
    { "Prop Material", ID_PRESET_PROP, false },
};
inline constexpr MenuEntry options[] = {
    { "Background grey1", ID_BACKGROUND_GREY1, false },
    { "Background grey2", ID_BACKGROUND_GREY2, false },
    { "Background black", ID_BACKGROUND_BLACK, false },
    separator,
    { "3ds keyframes", ID_KEYFRAMES_3DS, false },
    { "Exact Weld", ID_EXACT_WELD, false },
    separator,
    { "Reset View", ID_RESET_VIEW, false },
};
inline constexpr MenuEntry help[] = {
    { "About Application", ID_ABOUT, false },
};

inline constexpr PanelControl view[] = {
    { "By Group", ID_BY_GROUP }, { "Wireframe", ID_WIREFRAME }, { "Backculled", ID_BACKCULLED },
    { "Textured", ID_TEXTURED }, { "Shadows", ID_SHADOWS },     { "Vertex color", ID_VERTEX_COLOUR },
};
inline constexpr PanelControl surface[] = {
    { "Rough", ID_ROUGH },
    { "Metallic", ID_METALLIC },
    { "Moon", ID_MOON },
};
inline constexpr PanelControl mesh[] = {
    { "Invert", ID_INVERT },
    { "Weld", ID_WELD },
    { "Fix Normals", ID_FIX_NORMALS },
    { "Dup Faces", ID_DUP_FACES },
    { "TRI", ID_TRI },
    { "Quad", ID_QUAD },
    { "Split", ID_SPLIT },
    { "Lux Export", ID_LUX_EXPORT },
};
inline constexpr PanelControl statistics[] = {
    { "Vert", ID_VERT_COUNT },  { "Faces", ID_FACE_COUNT },   { "UV", ID_UV_COUNT },
    { "Lines", ID_LINE_COUNT }, { "Groups", ID_GROUP_COUNT }, { "Mats", ID_MATERIAL_COUNT },
};
} // namespace controlTables

inline constexpr Menu menus[] = {
    { "&File", controlTables::file },      { "&Texture", controlTables::texture },
    { "&Lights", controlTables::lights },  { "Material", controlTables::material },
    { "Options", controlTables::options }, { "Help", controlTables::help },
};

inline constexpr PanelGroup panelGroups[] = {
    { "View", panelBox, ID_FILTER_LIST, controlTables::view },
    { "Surface", panelBox, 0, controlTables::surface },
    { "Mesh", panelButton, 0, controlTables::mesh },
    { "Statistics", panelCount, 0, controlTables::statistics },
};
