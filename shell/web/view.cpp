// shell/web/view.cpp - the functions that the worker of a view in another page calls, beside those of program.cpp
//
// A view has no menu, no panel and no dialogs. It reads, draws and writes by the options of kbx, given one by one, so
// that it shows, says and writes what kbx does. Texts are UTF-8. Functions that can fail return 1, or 0 after telling
// the page the "cause". Of an option that cannot be followed the page is told "refused".
#include "cli/facts/facts.h"
#include "cli/facts/warnings.h"
#include "image/textures.h"
#include "import/dispatch.h"
#include "import/rkf.h"
#include "model/builtin.h"
#include "model/memory.h"
#include "model/mesh_copy.h"
#include "platform/file_names.h"
#include "platform/files.h"
#include "platform/web/host.h"
#include "platform/web/page_state.h"
#include "shell/loop.h"
#include "shell/picture_file.h"
#include "shell/scene.h"
#include "shell/undo.h"
#include "shell/view_options.h"
#include "shell/written_formats.h"
#include "tools/filter.h"
#include "tools/tools.h"

#include <emscripten/emscripten.h>
#include <stdlib.h>
#include <string.h>
#include <algorithm>
#include <vector>

// How a model is read, as kbx has it.
struct ReadArguments
{
    bool keyframes = true;
    std::vector<const MeshTool*> tools;
    int filter = 0;
    std::string format, plyList; // empty: as kbx does without the option
    int maxSize = 0;             // MiB; 0: any
};

struct ViewProgram
{
    ViewArguments look;
    ReadArguments read;
    LoadedModel model; // of the mesh that is shown, which the model list owns
    std::string path;  // as the page has named it
    bool builtIn;
    std::string failedPath, error; // of the file that was opened last, when that failed
    std::string texturePath;       // of the image in the user's slot
};

static ViewProgram view;

static int fail(const std::string& cause)
{
    tellPage("cause", 0, 0, cause.c_str());
    return 0;
}

// ---- options ----

static bool setNumber(int* number, const std::string& text, int least, int most)
{
    char* end = nullptr;
    long value = strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != 0 || value < least || value > most)
        return false;
    *number = static_cast<int>(value);
    return true;
}

// Names with commas or blanks between them.
static bool setTools(ReadArguments* read, const std::string& text)
{
    const char* separators = ", \t\r\n";
    for (size_t begin = text.find_first_not_of(separators); begin != std::string::npos;)
    {
        size_t end = std::min(text.find_first_of(separators, begin), text.size());
        const MeshTool* tool = findToolByName(text.substr(begin, end - begin));
        if (!tool)
            return false;
        read->tools.push_back(tool);
        begin = text.find_first_not_of(separators, end);
    }
    return true;
}

static bool setFormat(ReadArguments* read, const std::string& text)
{
    read->format = text;
    return text.size() == 3 && (text == "rkf" || isModelName(("model." + text).c_str()));
}

struct ReadOption
{
    const char* name;
    const char* values;
    bool (*set)(ReadArguments* read, const std::string& text);
};

static const ReadOption readOptions[] = {
    { "no-keyframes", "",
      [](ReadArguments* read, const std::string&)
      {
          read->keyframes = false;
          return true;
      } },
    { "tool", "names of tools", setTools },
    { "filter", "N",
      [](ReadArguments* read, const std::string& text) { return setNumber(&read->filter, text, 0, 1 << 30); } },
    { "format", "the name of a format", setFormat },
    { "ply-list", "NAME",
      [](ReadArguments* read, const std::string& text)
      {
          read->plyList = text;
          return true;
      } },
    { "max-size", "N",
      [](ReadArguments* read, const std::string& text) { return setNumber(&read->maxSize, text, 1, 1 << 20); } },
};

// An option that cannot be followed. The others count all the same.
static void refuse(const std::string& cause)
{
    tellPage("refused", 0, 0, cause.c_str());
}

static void refuseValue(const char* name, const char* values, const std::string& text)
{
    refuse(std::string(name) + ": expected " + values + ", not " + text);
}

template <typename Options, typename Record>
static void setAmong(const Options& options, Record* record, const std::string& name, const std::string& text)
{
    for (const auto& option : options)
    {
        if (name != option.name)
            continue;
        Record changed = *record;
        if (option.set(&changed, text))
            *record = changed;
        else
            refuseValue(option.name, option.values, text);
    }
}

static void setOption(const std::string& name, const std::string& text)
{
    setAmong(viewOptions, &view.look, name, text);
    setAmong(readOptions, &view.read, name, text);
}

// ---- what is shown ----

// Returns the slot of the chosen texture, -1 for none or for one that cannot be read.
static int32_t loadTexture()
{
    if (!view.look.texture)
        return -1;
    const std::string& name = *view.look.texture;
    int32_t slot = textureSlotOf(name);
    if (slot < textureUser || name == view.texturePath)
        return slot;
    Report report = {};
    pageState.outOfMemory = false;
    if (!loadTextureFile(name.c_str(), &TextureSlots[textureUser], nullptr, nullptr, &report))
    {
        refuse(std::string(fileNameOf(name.c_str())) + ": " + causeOf(report, name, pageState.outOfMemory));
        return -1;
    }
    view.texturePath = name;
    return slot;
}

// Draws by the options. turned: also from where they say, which ends what the user has turned.
static void showByOptions(bool turned)
{
    int32_t slot = loadTexture();
    choices = startChoices;
    chooseByOptions(&choices, view.look, view.builtIn, slot);
    if (turned)
    {
        frameState.view = viewByOptions(view.look);
        frameState.continuousRedraw = 0;
    }
    askForRedraw();
}

// ---- models ----

static bool isLargerThan(const std::string& path, int mebibytes)
{
    FILE* file = openFile(path.c_str(), "rb");
    bool larger = file && measureFile(file) > int64_t{ mebibytes } << 20;
    if (file)
        fclose(file);
    return larger;
}

static bool isRkf(const std::string& path)
{
    OutputFormat format;
    return outputFormatOf(path, &format) && format == OutputFormat::rkf;
}

static int readMesh(LoadedModel* model, const std::string& path)
{
    const ReadArguments& read = view.read;
    if (read.format.empty() ? isRkf(path) : read.format == "rkf")
        return LoadRkfFile(model->mesh, path.c_str(), &model->report);
    const char* plyList = read.plyList.empty() ? nullptr : read.plyList.c_str();
    const char* format = read.format.empty() ? nullptr : read.format.c_str();
    return readModelFile(model->mesh, path.c_str(), { read.keyframes, plyList, &model->report, format });
}

// A tool that shows a message box has failed; one that finds nothing to do has not. All of them see the whole model.
static bool runToolOn(Mesh* mesh, const MeshTool* tool)
{
    int boxesBefore = pageState.boxCount;
    tool->run(mesh);
    return pageState.boxCount == boxesBefore;
}

static bool repair(LoadedModel* model)
{
    for (const MeshTool* tool : view.read.tools)
    {
        if (!runToolOn(model->mesh, tool))
        {
            model->error = std::string("the tool ") + tool->name + " failed";
            return false;
        }
    }
    if (view.read.filter > 0)
        applyFilter(model->mesh, view.read.filter);
    return true;
}

// Reads a file as the options say. Returns whether there is a mesh; otherwise the reason is in the record.
static bool readModel(LoadedModel* model, const std::string& path)
{
    pageState.outOfMemory = false;
    if (view.read.maxSize > 0 && isLargerThan(path, view.read.maxSize))
    {
        model->error = "larger than " + std::to_string(view.read.maxSize) + " MiB, the limit of --max-size";
        return false;
    }
    model->mesh = createMesh("prop");
    if (!model->mesh)
    {
        model->error = "out of memory";
        return false;
    }
    bool ok = readMesh(model, path) != 0;
    if (ok)
        model->textures = findTextures(model->mesh, path, &model->report);
    else
        model->error = causeOf(model->report, path, pageState.outOfMemory);
    if (ok && repair(model))
        return true;
    freeMesh(model->mesh);
    model->mesh = nullptr;
    return false;
}

static bool makeBuiltIn(LoadedModel* model)
{
    int hasMaterials = 0;
    model->mesh = createMesh("teapot");
    if (model->mesh && loadBuiltInModel(model->mesh, &hasMaterials) && repair(model))
        return true;
    if (model->error.empty())
        model->error = "out of memory";
    freeMesh(model->mesh);
    return false;
}

static void showModel(LoadedModel&& model, const std::string& path)
{
    forgetUndo();
    installMesh(&modelList, model.mesh);
    view.model = std::move(model);
    view.path = path;
    view.builtIn = path.empty();
    view.error.clear();
    nameModel(view.builtIn ? "teapot" : fileNameOf(path.c_str()), path);
    showByOptions(true);
}

// The facts as kbx info gives them, of the model that is shown, or the reason why the last file is not.
static std::string describe()
{
    if (!view.error.empty())
        return errorAsJson(view.failedPath, view.error, true);
    if (view.builtIn || !currentMesh())
        return "null";
    Facts facts;
    if (!gatherFacts(view.model.mesh, &facts))
        return errorAsJson(view.path, "out of memory", true);
    return factsAsJson(view.path, view.model, facts, true);
}

// ---- saving ----

// The preview beside a prop is that of kbx: the picture without any option.
static int writeProp(Mesh* mesh, const char* path)
{
    ViewArguments plain;
    Choices chosen = startChoices;
    chooseByOptions(&chosen, plain, view.builtIn, -1);
    FrameState state = startFrameState;
    state.displayWidth = plain.width;
    state.displayHeight = plain.height;
    state.view = viewByOptions(plain);
    ModelList list = {};
    list.meshes[0] = mesh;
    list.count = 1;
    fitModelList(&list);
    FrameBuffer buffer = {};
    if (!createFrameBuffer(&buffer, plain.width, plain.height))
        return reportOutOfMemory();
    RenderFrame(&buffer, &list, &chosen.render, &state);
    PreviewSource preview = { buffer.picture.bits, plain.width, plain.height, buffer.pitch * 3 };
    int ok = writeModelAs(OutputFormat::pp2, mesh, path, &preview);
    destroyFrameBuffer(&buffer);
    askForRedraw(); // the frame has marked the faces as it saw them
    return ok;
}

static int writeMesh(OutputFormat format, Mesh* mesh, const char* path)
{
    if (const char* obstacle = obstacleToWriting(format, mesh))
        return fail(obstacle);
    return format == OutputFormat::pp2 ? writeProp(mesh, path) : writeModelAs(format, mesh, path, nullptr);
}

// With a filter, only what it shows is written; the model that is shown keeps the rest.
static int writeModel(OutputFormat format, const char* path)
{
    Mesh* mesh = currentMesh();
    if (!mesh)
        return fail("there is no model");
    if (view.read.filter == 0)
        return writeMesh(format, mesh, path);
    if (filterEntryFaces(mesh, view.read.filter) == 0)
        return fail("the filter shows no face");
    Mesh* shown = copyMesh(mesh);
    if (!shown)
        return reportOutOfMemory();
    removeHiddenFaces(shown);
    int ok = writeMesh(format, shown, path);
    freeMesh(shown);
    return ok;
}

extern "C"
{
    // In place of beginProgram: there is no model yet.
    EMSCRIPTEN_KEEPALIVE int beginView(int width, int height)
    {
        frameState.displayWidth = std::max(width, displaySideLeast);
        frameState.displayHeight = std::max(height, displaySideLeast);
        choices = startChoices;
        loopState.appRunning = createFrameBuffer(&frameBuffer, frameState.displayWidth, frameState.displayHeight);
        return loopState.appRunning ? 1 : fail("Out of memory");
    }

    EMSCRIPTEN_KEEPALIVE void clearOptions()
    {
        view.look = {};
        view.read = {};
    }

    // An option of kbx render without its hyphens; text: its value, "" for a switch.
    EMSCRIPTEN_KEEPALIVE void giveOption(const char* name, const char* text)
    {
        setOption(name, text);
    }

    EMSCRIPTEN_KEEPALIVE void applyOptions(int turned)
    {
        showByOptions(turned != 0);
    }

    // Opens a file, or the built-in model for "". After a failure the last model stays.
    EMSCRIPTEN_KEEPALIVE int openInView(const char* path)
    {
        LoadedModel model;
        if (*path ? readModel(&model, path) : makeBuiltIn(&model))
        {
            showModel(std::move(model), path);
            return 1;
        }
        view.failedPath = path;
        view.error = model.error;
        return fail(model.error);
    }

    // Tells the page "facts".
    EMSCRIPTEN_KEEPALIVE void describeModel()
    {
        tellPage("facts", 0, 0, describe().c_str());
    }

    EMSCRIPTEN_KEEPALIVE int runToolInView(const char* name)
    {
        const MeshTool* tool = findToolByName(name);
        Mesh* mesh = currentMesh();
        if (!tool || !mesh)
            return fail(tool ? "there is no model" : std::string("there is no tool ") + name);
        if (view.read.filter > 0)
            applyFilter(mesh, 0);
        bool ok = runToolOn(mesh, tool);
        if (view.read.filter > 0)
            applyFilter(mesh, view.read.filter);
        view.error.clear();
        fitModelList(&modelList);
        askForRedraw();
        return ok || fail(std::string("the tool ") + name + " failed");
    }

    // Writes the model, or the picture for .png and .bmp, as the ending of the path says.
    EMSCRIPTEN_KEEPALIVE int saveInView(const char* path)
    {
        OutputFormat format;
        if (outputFormatOf(path, &format))
            return writeModel(format, path);
        const char* ending = strrchr(path, '.');
        bool asPng = ending && strcmp(ending, ".png") == 0;
        if (!asPng && (!ending || strcmp(ending, ".bmp") != 0))
            return fail("there is no such format");
        auto write = asPng ? writePictureAsPng : writePicture;
        return write(path, &frameBuffer, frameState.displayWidth, frameState.displayHeight);
    }
}
