// shell/file_dialogs.cpp - one row for each dialog
#include "shell/file_dialogs.h"

#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "image/textures.h"
#include "import/rkf.h"
#include "model/ascii.h"
#include "platform/dialogs.h"
#include "platform/file_names.h"

struct DialogRow
{
    const char* filterText;
    const char* filterPattern;
    const char* title;
    const char* defaultExtension;
    uint32_t flags;
    size_t titleCharacters; // 0: the title is not wanted
};

constexpr uint32_t saveFlags = dialogOverwritePrompt | dialogHideReadOnly;

// A picture has the default extension of a prop, so that a name typed without one gives the file that users look for.
//
// clang-format off
static const DialogRow openModelRow   = { "*.obj *.3ds *.dxf *.ply *.pp2 *.hr2 *.cr2 *.off",
                                          "*.obj;*.3ds;*.dxf;*.ply;*.pp2;*.hr2;*.cr2;*.off",
                                                                 nullptr,      nullptr, 0,                     32 };
static const DialogRow openTextureRow = { "JPG Files(*.JPG)",       "*.JPG", nullptr,      nullptr, 0,                     32 };
static const DialogRow openRkfRow     = { "rkf Files(*.rkf)",       "*.rkf", nullptr,      nullptr, 0,                     320 };
static const DialogRow saveRkfRow     = { "rkf Files(*.rkf)",       "*.rkf", nullptr,      nullptr, dialogOverwritePrompt, 320 };
static const DialogRow saveObjRow     = { "wavefront obj files",    "*.obj", "save mesh",  "obj",   saveFlags,             320 };
static const DialogRow savePropRow    = { "Poser prop (*.pp2)",     "*.pp2", "save mesh",  "pp2",   saveFlags,             0 };
static const DialogRow savePictureRow = { "Windows Bitmap (*.bmp)", "*.bmp", "save image", "pp2",   saveFlags,             0 };
// clang-format on

struct Choice
{
    std::string path, title;
};

// Fills a buffer of a dialog: the text and zeros behind it.
static std::string bufferOf(const std::string& text, size_t characters)
{
    std::string buffer = text;
    buffer.resize(dialogBytes(characters));
    return buffer;
}

static bool ask(const DialogRow& row, int (*show)(FileDialog* dialog), const std::string& proposed, Choice* choice)
{
    std::string path = bufferOf(proposed, dialogPathRoom), title = bufferOf("", row.titleCharacters);
    FileDialog dialog = {
        .filterText = row.filterText,
        .filterPattern = row.filterPattern,
        .title = row.title,
        .defaultExtension = row.defaultExtension,
        .flags = row.flags,
        .path = path.data(),
        .pathRoom = dialogPathRoom,
        .fileTitle = row.titleCharacters > 0 ? title.data() : nullptr,
        .fileTitleRoom = row.titleCharacters,
    };
    if (!show(&dialog))
        return false;
    *choice = { path.c_str(), title.c_str() };
    return true;
}

static bool askToOpen(const DialogRow& row, Choice* choice)
{
    return ask(row, chooseFileToOpen, "", choice);
}

// How many bytes of the text so many of a dialog's characters have; one outside the first 65,536 counts as two.
static size_t bytesOfCharacters(const std::string& text, size_t limit)
{
    size_t characters = 0;
    for (size_t i = 0; i < text.size(); ++i)
    {
        auto byte = static_cast<unsigned char>(text[i]);
        bool continues = (byte & 0xC0) == 0x80;
        characters += continues ? 0 : byte >= 0xF0 ? 2 : 1;
        if (characters > limit)
            return i;
    }
    return text.size();
}

// Proposes a stem with an extension, the stem cut when both have no room.
static bool askToSave(const DialogRow& row, const std::string& stem, const std::string& extension, Choice* choice)
{
    size_t room = dialogPathRoom - 1 - extension.size();
    return ask(row, chooseFileToSave, stem.substr(0, bytesOfCharacters(stem, room)) + extension, choice);
}

int chooseModelToOpen(std::string* path)
{
    Choice choice;
    if (!askToOpen(openModelRow, &choice))
        return 0;
    *path = choice.path;
    return 1;
}

int choosePictureToSave(const std::string& modelName, std::string* path)
{
    Choice choice;
    if (!askToSave(savePictureRow, withoutExtension(modelName), ".bmp", &choice))
        return 0;
    *path = choice.path;
    return 1;
}

int SaveObjFile(const Mesh* mesh, std::string* name, std::string* path)
{
    Choice choice;
    if (!askToSave(saveObjRow, withoutExtension(*name), ".obj", &choice))
        return 0;
    if (!WriteObjFile(mesh, choice.path.c_str(), choice.title.c_str()))
        return 0;
    *name = choice.title;
    *path = choice.path;
    return 1;
}

int savePoserProp(const Mesh* mesh, const std::string& suggestedName, bool writePreview, const PreviewSource* frame)
{
    Choice choice;
    if (!askToSave(savePropRow, upToLastDot(suggestedName), ".pp2", &choice))
        return 0;
    return WritePropFile(mesh, choice.path.c_str(), writePreview ? frame : nullptr);
}

int RkfFileDialog(Mesh* mesh, std::string* path, std::string* title, bool save, bool omitMaterials)
{
    Choice choice;
    bool chosen =
        save ? askToSave(saveRkfRow, withoutExtension(*path), ".rkf", &choice) : askToOpen(openRkfRow, &choice);
    if (!chosen)
        return 0;
    *path = choice.path;
    *title = choice.title;
    return save ? WriteRkfFile(mesh, path->c_str(), omitMaterials) : LoadRkfFile(mesh, path->c_str());
}

int loadUserTexture(Image* image, std::string* title)
{
    Choice choice;
    if (!askToOpen(openTextureRow, &choice))
        return 0;
    return loadUserTextureAt(choice.path.c_str(), image, title);
}

int loadUserTextureAt(const char* path, Image* image, std::string* title)
{
    std::string name = fileNameOf(path);
    name.resize(bytesOfCharacters(name, openTextureRow.titleCharacters - 1));
    for (char& c : name)
        c = asciiLower(c);
    *title = name;
    return loadTextureFile(path, image);
}
