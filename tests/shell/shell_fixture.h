// tests/shell/shell_fixture.h - the program after start-up, on the recording platform
#pragma once
#include "image/textures.h"
#include "model/memory.h"
#include "render/materials.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/commands.h"
#include "shell/loop.h"
#include "shell/panel.h"
#include "shell/scene.h"
#include "shell/start_up.h"
#include "shell/title.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>
#include <filesystem>
#include <fstream>
#include <string>

class ShellTest : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        frameState = startFrameState;
        loopState = {};
        ASSERT_TRUE(buildScene(""));
        initPanel();
        ASSERT_TRUE(createFrameBuffer(&frameBuffer, 620, 520));
        loopState.appRunning = 1;
        showTitle(programName); // whatever an earlier test holds there
        folder = std::filesystem::temp_directory_path() /
                 ("kestrelbox-shell-" + std::to_string(testing::UnitTest::GetInstance()->random_seed()) + "-" +
                  testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(folder);
        forget();
    }

    void TearDown() override
    {
        loopState.appRunning = 0;
        destroyFrameBuffer(&frameBuffer);
        releaseModels();
        releaseImages();
        EXPECT_EQ(recorded.liveBlocks, 0);
        EXPECT_EQ(recorded.livePictures, 0);
        std::filesystem::remove_all(folder);
    }

    // Clears the record, so that a test sees only later calls. Marks and texts of the controls stay.
    void forget()
    {
        recorded.boxes.clear();
        recorded.notices.clear();
        recorded.titles.clear();
        recorded.dialogs.clear();
        recorded.presented.clear();
        recorded.focus.clear();
        frameState.fullRedraw = loopState.redrawPending = 0;
    }

    static void drawFrame()
    {
        RenderFrame(&frameBuffer, &modelList, &choices.render, &frameState);
    }

    // Whether a material has the colour and the shine of a preset.
    static bool looksLike(const Material& material, int32_t preset)
    {
        return memcmp(material.diffuse, materialPresets[preset].colour, sizeof material.diffuse) == 0 &&
               material.specularLevel == materialPresets[preset].specularLevel;
    }

    bool redrawAsked() const
    {
        return frameState.fullRedraw && loopState.redrawPending;
    }

    std::string writeFile(const std::string& name, const std::string& text)
    {
        std::string path = (folder / name).string();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    void click(int id, bool on)
    {
        recorded.panelChecks[id] = on;
        EXPECT_TRUE(runPanelCommand(id));
    }

    std::filesystem::path folder;
};

inline constexpr char triangleObj[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\ng one\nf 1 2 3\n";
inline constexpr char lineObj[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nl 1 2\n";
