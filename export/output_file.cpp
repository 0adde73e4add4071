// export/output_file.cpp - writing beside a file, then taking its place
#include "export/output_file.h"
#include "platform/boxes.h"
#include "platform/files.h"

constexpr size_t pathRoom = 8192;

static int reportUnwritten(const OutputFile* output)
{
    messageBox(output->target.c_str(), "Error cannot write", iconStop);
    return 0;
}

static FILE* openBeside(OutputFile* output)
{
    constexpr int mostNames = 100;
    const std::string part = output->place + ".part";
    std::string name = part;
    int taken; // what somebody has of that name is not ours to overwrite
    FILE* file = createFile(name.c_str(), &taken);
    for (int i = 1; i < mostNames && taken; ++i)
    {
        name = part + std::to_string(i);
        file = createFile(name.c_str(), &taken);
    }
    if (file)
        output->temporary = name;
    return file;
}

int openOutput(OutputFile* output, const char* target)
{
    char place[pathRoom];
    *output = { nullptr, target, "", "" };
    FileTarget kind = findFileTarget(target, place, sizeof place);
    if (kind != targetRefused)
    {
        output->place = place;
        output->file = kind == targetDirect ? openFile(place, "wb") : openBeside(output);
    }
    if (!output->file)
        messageBox(target, "Error cannot create", iconStop);
    return output->file != nullptr;
}

int closeOutput(OutputFile* output, int whole)
{
    if (ferror(output->file))
        whole = 0;
    if (fclose(output->file) != 0)
        whole = 0;
    output->file = nullptr;
    if (whole)
        return 1;
    abandonOutputs(output, 1);
    return reportUnwritten(output);
}

int commitOutputs(OutputFile* outputs, int count)
{
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

void abandonOutputs(OutputFile* outputs, int count)
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

int commitOutput(OutputFile* output, int whole)
{
    return closeOutput(output, whole) && commitOutputs(output, 1);
}
