// fuzz/given_fuzz.cpp - paths of any bytes, dropped or handed over, and files that they lead to
//
// The input has up to four lines: a byte that chooses what happens, and a name. The rest is what stands at each name.
#include "fuzz/fuzzing.h"
#include "fuzz/memory_files.h"
#include "image/textures.h"
#include "shell/given_files.h"
#include "shell/loop.h"
#include "shell/scene.h"
#include "shell/undo.h"
#include "tests/recording/recording.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <vector>

constexpr size_t nameLimit = 4;

struct GivenName
{
    uint8_t choice;
    std::string name;
};

static std::vector<GivenName> takeNames(const uint8_t** bytes, size_t* size)
{
    std::vector<GivenName> names;
    while (names.size() < nameLimit)
    {
        const auto* end = static_cast<const uint8_t*>(memchr(*bytes, '\n', *size));
        if (!end || end == *bytes)
            break;
        const char* text = reinterpret_cast<const char*>(*bytes + 1);
        names.push_back({ **bytes, std::string(text, reinterpret_cast<const char*>(end)) });
        *size -= static_cast<size_t>(end + 1 - *bytes);
        *bytes = end + 1;
    }
    return names;
}

static void expect(bool holds, const char* what, const std::string& name)
{
    if (holds)
        return;
    fprintf(stderr, "%s: %s\n", name.c_str(), what);
    abort();
}

// What fails is said in a box, or in a beep where there is nothing to try.
static void expectWord(int ok, size_t boxes, int beeps, const std::string& name)
{
    expect(ok || recorded.boxes.size() > boxes || recorded.beeps > beeps, "refused without a word", name);
}

static void handOver(const GivenName& given)
{
    const void* bytes = given.name.c_str(); // up to its first zero byte, as another start would send it
    size_t size = given.choice & 8 ? given.name.size() : strlen(given.name.c_str()) + 1;
    uintptr_t tag = given.choice & 16 ? handOverTag + 1 : handOverTag;
    int taken = takeHandedOver(tag, bytes, size);
    expect(taken == 0 || (tag == handOverTag && size > 1), "a message of another form is taken", given.name);
    openWaitingFile();
}

static void act(const GivenName& given)
{
    size_t boxes = recorded.boxes.size();
    int beeps = recorded.beeps;
    switch (given.choice % 5)
    {
    case 0:
        giveFile(given.name);
        openWaitingFile();
        break;
    case 1: handOver(given); break;
    case 2: expectWord(openGivenFile(given.name), boxes, beeps, given.name); break;
    case 3: expectWord(reloadModel(), boxes, beeps, given.name); break;
    default: expectWord(openNeighbour(given.choice & 8 ? 1 : -1), boxes, beeps, given.name); break;
    }
    checkMesh(currentMesh(), given.name.c_str());
    expect(!currentFileName.empty(), "the model has no name", given.name);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    beginInput();
    std::vector<GivenName> names = takeNames(&bytes, &size);
    for (const GivenName& given : names)
        if (!given.name.empty()) // no operating system has such a file
            memoryFileAt(given.name, bytes, size);
    installMesh(&modelList, createMesh("prop"));
    nameModel("prop", "");
    loopState.appRunning = 1;
    for (const GivenName& given : names)
        act(given);
    loopState.appRunning = 0;
    forgetUndo();
    freeTextures();
    releaseModels();
    return endInput();
}
