// export/output_file.cpp - writing beside a file, then taking its place
#include "export/output_file.h"
#include "platform/boxes.h"
#include "platform/files.h"

constexpr size_t placeRoom = 8192;

static int reportUnwritten(const OutputFile* output)
{
    messageBox(output->target.c_str(), "Error cannot write", iconStop);
    return 0;
}

static FILE* openBeside(OutputFile* output)
{
    constexpr int nameLimit = 100;
    const std::string part = output->place + ".part";
    std::string name = part;
    int taken; // somebody else's file of that name must not be overwritten
    FILE* file = createFile(name.c_str(), &taken);
    for (int i = 1; i < nameLimit && taken; ++i)
    {
        name = part + std::to_string(i);
        file = createFile(name.c_str(), &taken);
    }
    if (file)
        output->temporary = name;
    return file;
}

static FILE* openWhole(OutputFile* output)
{
    char place[placeRoom];
    FileTarget kind = findFileTarget(output->target.c_str(), place, sizeof place);
    if (kind == targetRefused)
        return nullptr;
    output->place = place;
    return kind == targetDirect ? openFile(place, "wb") : openBeside(output);
}

int openOutput(OutputFile* output, const std::string& target, SaveMode mode)
{
    *output = { nullptr, mode, target, target, "" };
    output->file = mode == saveInPlace ? openFile(target.c_str(), "wb") : openWhole(output);
    if (!output->file && mode == saveWhole)
        messageBox(target.c_str(), "Error cannot create", iconStop);
    return output->file != nullptr;
}

// Closes and removes what has not been put in place, at whatever stage an output is.
static void abandonOutputs(OutputFile* outputs, int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (outputs[i].file)
            fclose(outputs[i].file);
        outputs[i].file = nullptr;
        if (!outputs[i].temporary.empty())
            removeFile(outputs[i].temporary.c_str());
        outputs[i].temporary.clear();
    }
}

int closeOutput(OutputFile* output, bool written)
{
    bool whole = written && !ferror(output->file);
    if (fclose(output->file) != 0) // the last bytes reach the disk here, or do not
        whole = false;
    output->file = nullptr;
    if (whole)
        return 1;
    abandonOutputs(output, 1);
    return output->mode == saveWhole ? reportUnwritten(output) : 0;
}

int commitOutputs(OutputFile* outputs, int count, bool whole)
{
    if (!whole)
    {
        abandonOutputs(outputs, count);
        return 0;
    }
    for (int i = 0; i < count; ++i)
    {
        if (outputs[i].temporary.empty()) // written where it belongs
            continue;
        if (!renameFile(outputs[i].temporary.c_str(), outputs[i].place.c_str()))
        {
            abandonOutputs(outputs + i, count - i);
            return reportUnwritten(&outputs[i]);
        }
        outputs[i].temporary.clear();
    }
    return 1;
}

int commitOutput(OutputFile* output, bool written)
{
    return closeOutput(output, written) && commitOutputs(output, 1, true);
}
