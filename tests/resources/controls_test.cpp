// tests/resources/controls_test.cpp - the menu and the tool panel, entry by entry
#include "resources/controls.h"

#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

struct Row
{
    int id; // 0: a separator
    const char* text;
};

// The texts are those on the screen, so they are compared as strings.
static std::string asText(int id, const char* text)
{
    return std::to_string(id) + " " + (text ? text : "");
}

TEST(Controls, MenuHoldsItsEntriesInTheirOrder)
{
    static const struct
    {
        const char* title;
        std::vector<Row> entries;
    } expected[] = {
        { "&File",
          { { 104, "Open mesh File" },
            { 0, "" },
            { 108, "Export as obj" },
            { 109, "Export as pp2" },
            { 0, "" },
            { 111, "Save Image" },
            { 110, "Load texture" },
            { 0, "" },
            { 112, "Read RKF" },
            { 113, "Save RKF" },
            { 0, "" },
            { 101, "E&xit" } } },
        { "&Texture", { { 160, "Wood" }, { 161, "Metal" }, { 162, "Pattern" }, { 163, "User" } } },
        { "&Lights", { { 200, "&Light 1" }, { 201, "&Light 2" }, { 202, "&Light 3" } } },
        { "Material",
          { { 300, "Brass" },
            { 301, "Wood" },
            { 302, "Pewter" },
            { 303, "Silver" },
            { 304, "Gold" },
            { 305, "Green" },
            { 306, "Chalk" },
            { 307, "Brick" },
            { 308, "Crystal" },
            { 309, "White" },
            { 310, "Prop Material" } } },
        { "Options",
          { { 336, "Background grey1" },
            { 337, "Background grey2" },
            { 338, "Background black" },
            { 0, "" },
            { 339, "3ds keyframes" },
            { 340, "Exact Weld" },
            { 0, "" },
            { 140, "Reset View" } } },
        { "Help", { { 102, "About Application" } } },
    };
    ASSERT_EQ(std::size(menus), std::size(expected));
    for (size_t i = 0; i < std::size(menus); ++i)
    {
        EXPECT_STREQ(menus[i].text, expected[i].title);
        ASSERT_EQ(menus[i].entries.size(), expected[i].entries.size()) << menus[i].text;
        for (size_t j = 0; j < menus[i].entries.size(); ++j)
        {
            const MenuEntry& entry = menus[i].entries[j];
            const Row& row = expected[i].entries[j];
            EXPECT_EQ(asText(entry.id, entry.text), asText(row.id, row.text));
            EXPECT_EQ(entry.disabled, entry.id == ID_TEXTURE_USER) << row.text;
        }
    }
}

TEST(Controls, PanelHoldsItsControlsInTheirOrder)
{
    static const struct
    {
        const char* title;
        PanelControlKind kind;
        int list;
        std::vector<Row> controls;
    } expected[] = {
        { "View",
          panelBox,
          1066,
          { { 1067, "By Group" },
            { 1050, "Wireframe" },
            { 1051, "Backculled" },
            { 1052, "Textured" },
            { 1053, "Shadows" },
            { 1054, "Vertex color" } } },
        { "Surface", panelBox, 0, { { 1056, "Rough" }, { 1057, "Metallic" }, { 1058, "Moon" } } },
        { "Mesh",
          panelButton,
          0,
          { { 1055, "Invert" },
            { 1068, "Weld" },
            { 1071, "Fix Normals" },
            { 1072, "Dup Faces" },
            { 1073, "TRI" },
            { 1074, "Quad" },
            { 1070, "Split" },
            { 1069, "Lux Export" } } },
        { "Statistics",
          panelCount,
          0,
          { { 1060, "Vert" },
            { 1062, "Faces" },
            { 1061, "UV" },
            { 1063, "Lines" },
            { 1064, "Groups" },
            { 1065, "Mats" } } },
    };
    ASSERT_EQ(std::size(panelGroups), std::size(expected));
    for (size_t i = 0; i < std::size(panelGroups); ++i)
    {
        const PanelGroup& group = panelGroups[i];
        EXPECT_STREQ(group.text, expected[i].title);
        EXPECT_EQ(group.kind, expected[i].kind) << group.text;
        EXPECT_EQ(group.listId, expected[i].list) << group.text;
        ASSERT_EQ(group.controls.size(), expected[i].controls.size()) << group.text;
        for (size_t j = 0; j < group.controls.size(); ++j)
        {
            const Row& row = expected[i].controls[j];
            EXPECT_EQ(asText(group.controls[j].id, group.controls[j].text), asText(row.id, row.text));
        }
    }
}
