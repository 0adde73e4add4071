// cli/copy_collisions.cpp - asking kbx info for the pictures of every input, and comparing their names
#include "cli/copy_collisions.h"

#include "cli/jobs.h"
#include "cli/texture_copies.h"
#include "cli/written.h"
#include "platform/file_names.h"
#include "platform/folders.h"

#include <nlohmann/json.hpp>

#include <map>

using Json = nlohmann::json;

struct Owner
{
    std::string input;
    std::string picture; // empty: a file that the input becomes
};

// What stands at each place, by the name that the file system has for it.
struct Places
{
    std::map<std::wstring, Owner> owners;
    bool ignoresCase;
};

static std::wstring keyOf(const Places& places, const std::string& path)
{
    return places.ignoresCase ? foldedName(path) : std::wstring(path.begin(), path.end());
}

// The pictures that kbx info has found for a model: their files by the names that the model has for them.
static std::vector<TextureCopy> picturesIn(const std::string& answer)
{
    std::vector<TextureCopy> pictures;
    Json model = Json::parse(answer, nullptr, false);
    if (!model.is_object() || !model.contains("materials"))
        return pictures;
    for (const Json& material : model["materials"])
    {
        for (const char* kind : { "texture", "opacity" })
        {
            const Json& picture = material[kind];
            if (picture.is_object() && picture.contains("file"))
                pictures.push_back({ picture["file"], picture["name"] });
        }
    }
    return pictures;
}

// Puts the pictures of an input in their places. Returns the line of the first one whose place is taken.
static std::string placePictures(const std::vector<TextureCopy>& pictures, const std::string& input,
                                 const std::string& folder, Places* places)
{
    for (const TextureCopy& picture : pictures)
    {
        std::string place = placeOfPicture(folder, picture.to);
        if (place.empty())
            continue; // refused when the input is converted
        auto [found, fresh] = places->owners.emplace(keyOf(*places, place), Owner{ input, picture.from });
        const Owner& owner = found->second;
        if (fresh || owner.input == input || (!owner.picture.empty() && samePicture(owner.picture, picture.from)))
            continue;
        std::string line = owner.input;
        return line.append(" and ")
            .append(input)
            .append(" would both write ")
            .append(place)
            .append(" (--copy-textures)");
    }
    return "";
}

static std::vector<std::string> wordsFor(const Target& target, const LoadArguments& load)
{
    std::vector<std::string> words = { "info", "--json-lines" };
    if (!load.format.empty())
        words.push_back("--format=" + load.format);
    if (load.maxSize)
        words.push_back("--max-size=" + std::to_string(*load.maxSize));
    words.insert(words.end(), { "--", target.input });
    return words;
}

std::vector<std::string> copyCollisionsOf(const std::vector<Target>& targets, const Arguments& arguments)
{
    Places places = { {}, folderIgnoresCase(arguments.outputDir) != 0 };
    std::string folder = folderOf(targets[0].output);
    for (const Target& target : targets)
    {
        for (const std::string& file : possibleFilesOf(target.output))
            places.owners.emplace(keyOf(places, file), Owner{ target.input, "" });
    }
    std::vector<std::string> lines;
    auto words = [&](size_t i)
    {
        bool isKept = arguments.noClobber && wouldReplace(targets[i].output);
        return isKept ? std::vector<std::string>() : wordsFor(targets[i], arguments.load);
    };
    auto ended = [&](const EndedProgram& end)
    {
        const std::string& input = targets[end.which].input;
        std::string line = placePictures(picturesIn(end.out), input, folder, &places);
        if (!line.empty())
            lines.push_back(line);
    };
    runJobs({ targets.size(), arguments.jobs, words, ended });
    return lines;
}
