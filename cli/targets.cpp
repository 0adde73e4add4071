// cli/targets.cpp - names of outputs, and those that mean the same file
#include "cli/targets.h"

#include "cli/written.h"
#include "platform/file_names.h"
#include "platform/folders.h"

#include <unordered_map>

std::vector<Target> targetsOf(const Arguments& arguments)
{
    std::string folder = arguments.outputDir;
    if (*fileNameOf(folder.c_str()) != 0)
        folder += '/';
    std::string extension = "." + (arguments.to.empty() ? "png" : arguments.to);
    std::vector<Target> targets;
    for (const std::string& input : arguments.inputs)
    {
        std::string output = folder;
        output.append(withoutExtension(fileNameOf(input.c_str()))).append(extension);
        targets.push_back({ input, output });
    }
    return targets;
}

// Two targets whose files have the same key collide.
template <typename Key, typename KeyOf>
static std::vector<std::string> collisionsBy(const std::vector<Target>& targets, KeyOf keyOf)
{
    std::unordered_map<Key, size_t> owners;
    std::vector<std::string> lines;
    for (size_t i = 0; i < targets.size(); ++i)
    {
        for (const std::string& file : possibleFilesOf(targets[i].output))
        {
            auto [owner, fresh] = owners.emplace(keyOf(file), i);
            if (fresh || owner->second == i)
                continue;
            lines.push_back(targets[owner->second].input + " and " + targets[i].input + " would both write " + file);
            break;
        }
    }
    return lines;
}

std::vector<std::string> collisionsOf(const std::vector<Target>& targets, const std::string& folder)
{
    std::vector<std::string> folded = collisionsBy<std::wstring>(targets, [](const std::string& file)
                                                                 { return foldedName(fileNameOf(file.c_str())); });
    if (folded.empty() || folderIgnoresCase(folder))
        return folded;
    return collisionsBy<std::string>(targets, [](const std::string& file) { return file; });
}
