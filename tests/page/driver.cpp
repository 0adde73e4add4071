// tests/page/driver.cpp - the page in a browser, operated through tests/page/bridge.js
//
// The program runs in the browser. What the steps look at in its memory is copied into this process's own records.
#include "tests/window/driver.h"

#include "model/memory.h"
#include "resources/ids.h"
#include "shell/scene.h"
#include "tests/page/base64.h"
#include "tests/page/bridge.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>
#include <chrono>
#include <filesystem>

using Json = nlohmann::json;

// ---- the bridge ----

struct Bridge
{
    pid_t process;
    FILE *requests, *answers;
};

static Bridge bridge;

static Json answerOf(const Json& request)
{
    fprintf(bridge.requests, "%s\n", request.dump().c_str());
    fflush(bridge.requests);
    char* line = nullptr;
    size_t room = 0;
    bool ended = getline(&line, &room, bridge.answers) < 0;
    Json answer = ended ? Json{ { "error", "the bridge has ended" } } : Json::parse(line);
    free(line);
    if (answer.is_object() && answer.contains("error"))
        ADD_FAILURE() << request.dump() << ": " << answer["error"];
    return answer;
}

Json askBridge(const char* what, Json request)
{
    request["do"] = what;
    return answerOf(request);
}

template <typename Result>
static Result resultOf(const Json& answer)
{
    Result result = {};
    if (!answer.is_object() || !answer.contains("error"))
        answer.get_to(result);
    return result;
}

static bool startBridge()
{
    int in[2], out[2];
    if (pipe(in) != 0 || pipe(out) != 0)
        return false;
    bridge.process = fork();
    if (bridge.process == 0)
    {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        for (int end : { in[0], in[1], out[0], out[1] })
            close(end);
        execlp("node", "node", PAGE_TESTS "/bridge.js", PAGE_FOLDER, NODE_MODULES, nullptr);
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    bridge.requests = fdopen(in[1], "w");
    bridge.answers = fdopen(out[0], "r");
    char* line = nullptr;
    size_t room = 0;
    bool ready = getline(&line, &room, bridge.answers) > 0;
    free(line);
    return ready;
}

static void endBridge()
{
    fclose(bridge.requests);
    int status = 0;
    waitpid(bridge.process, &status, 0);
    fclose(bridge.answers);
}

int runTestsBeside(const std::vector<std::string>&, int (*runTests)())
{
    if (!startBridge())
    {
        fprintf(stderr, "the page could not be opened\n");
        return 1;
    }
    int status = runTests();
    std::vector<std::string> faults = resultOf<std::vector<std::string>>(askBridge("faults"));
    for (const std::string& fault : faults)
        fprintf(stderr, "the page reports: %s\n", fault.c_str());
    endBridge();
    return faults.empty() ? status : 1;
}

// ---- the program's records ----

static void copyState(const Json& state)
{
    frameState.displayWidth = state.value("width", 0);
    frameState.displayHeight = state.value("height", 0);
    frameState.continuousRedraw = state.value("spins", false);
    for (size_t i = 0; i < 9; ++i)
        frameState.view.rotation.m[i / 3 * 4 + i % 3] = state["rotation"][i];
    memoryTable.highWater = state.value("blocks", 0);
    for (int32_t i = 0; i < memoryTable.highWater; ++i)
        memoryTable.entries[i].address = &bridge;
}

void onProgramThread(const std::function<void()>& function)
{
    Json state = askBridge("state");
    if (state.contains("rotation"))
        copyState(state);
    function();
}

void settle()
{
    askBridge("settle");
}

size_t objectCount()
{
    return resultOf<size_t>(askBridge("objects"));
}

size_t residentBytes()
{
    return askBridge("state").value("memory", size_t{ 0 });
}

// ---- menu and panel ----

void command(int id)
{
    askBridge("command", { { "id", id } });
}

void pressPanel(int id)
{
    askBridge("panel", { { "id", id } });
}

void chooseInList(int index)
{
    askBridge("list", { { "index", index } });
}

std::string menuText(int id)
{
    return resultOf<std::string>(askBridge("menuText", { { "id", id } }));
}

bool menuEnabled(int id)
{
    return resultOf<bool>(askBridge("menuEnabled", { { "id", id } }));
}

bool menuTicked(int id)
{
    return resultOf<bool>(askBridge("menuTicked", { { "id", id } }));
}

bool panelTicked(int id)
{
    return resultOf<bool>(askBridge("panelTicked", { { "id", id } }));
}

std::string panelText(int id)
{
    return resultOf<std::string>(askBridge("panelText", { { "id", id } }));
}

std::vector<std::string> listEntries()
{
    return resultOf<std::vector<std::string>>(askBridge("listEntries"));
}

std::vector<std::string> menuLines()
{
    return resultOf<std::vector<std::string>>(askBridge("menuLines"));
}

std::vector<std::string> panelLines()
{
    return resultOf<std::vector<std::string>>(askBridge("panelLines"));
}

std::string windowTitle()
{
    return resultOf<std::string>(askBridge("title"));
}

// ---- dialogs and boxes ----

void answerDialogs(const std::vector<std::string>& paths)
{
    askBridge("answers", { { "paths", paths } });
}

Box noticeAfter(int id)
{
    Json notice = askBridge("notice", { { "id", id } });
    return { notice.value("text", ""), "", notice.value("shownMs", 0) };
}

Box boxAfter(int id, const std::function<void()>& meanwhile)
{
    Json box = askBridge("openBox", { { "id", id } });
    if (meanwhile)
        meanwhile();
    bool saves = id == ID_LUX_EXPORT; // the box says that the files are written
    askBridge("closeBox", { { "folder", std::filesystem::current_path().string() }, { "saves", saves } });
    return { box.value("text", ""), box.value("caption", ""), 0 };
}

// ---- mouse, keyboard and window ----

void pressMouse(MouseButton button, int x, int y)
{
    askBridge("press", { { "button", button }, { "x", x }, { "y", y } });
}

void moveMouse(int x, int y)
{
    askBridge("move", { { "x", x }, { "y", y } });
}

void releaseMouse(MouseButton button, int x, int y)
{
    askBridge("release", { { "button", button }, { "x", x }, { "y", y } });
}

void turnWheel(int notches)
{
    askBridge("wheel", { { "notches", notches } });
}

void pressKey(int key, uint32_t modifiers)
{
    askBridge("key", { { "key", key }, { "modifiers", modifiers } });
}

void dropFiles(const std::vector<std::string>& paths)
{
    askBridge("drop", { { "paths", paths } });
}

void enlargeWindow(int width, int height)
{
    askBridge("enlarge", { { "width", width }, { "height", height } });
}

// A page cannot be started again or be minimised by a script.
bool startAgain(const std::string&)
{
    return false;
}

void minimiseWindow() {}

void restoreWindow() {}

// The command line of the same build, under Node.js. Its pictures are those of the page byte for byte.
bool runKbx(const std::string& arguments)
{
    return system(
               ("node --no-experimental-fetch " WASM_PROGRAMS "/kbx.js " + arguments + " >/dev/null 2>&1").c_str()) ==
           0;
}

// ---- pictures ----

static Shown pictureOf(const Json& answer)
{
    const std::string bytes = decodeBase64(answer.value("bytes", ""));
    return { answer.value("width", 0), answer.value("height", 0), { bytes.begin(), bytes.end() } };
}

Shown shownPicture()
{
    return pictureOf(askBridge("shown"));
}

Shown clipboardPicture()
{
    return pictureOf(askBridge("clipboard"));
}
