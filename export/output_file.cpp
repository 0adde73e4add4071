// export/output_file.cpp - opening, closing and placing the files of a writer
#include "export/output_file.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/refused_memory.h"

#include <errno.h>
#include <string.h>
#include <vector>

// Shows the box that says what could not be done, and explains it with the operating system's reason.
static int reportFailure(const OutputFile* output, const char* what, int reason)
{
    if (reason == ENOMEM)
        noteRefusedMemory();
    if (reason == EPIPE && isStandardOutput(output->target)) // who closes a pipe has read enough
        return 0;
    messageBox(output->target.c_str(), what, iconStop);
    if (reason != 0)
        explainFailure(output->target.c_str(), strerror(reason));
    return 0;
}

static FILE* openWhole(OutputFile* output)
{
    std::string place;
    FileTarget kind = findFileTarget(output->target.c_str(), &place);
    if (kind == targetRefused)
        return nullptr;
    if (kind == targetDirect)
        return openFile(place.c_str(), "wb");
    return createPendingFile(&output->pending, place.c_str()) ? output->pending.file : nullptr;
}

int openOutput(OutputFile* output, const std::string& target)
{
    *output = { nullptr, target, {} };
    errno = 0;
    output->file = openWhole(output);
    return output->file ? 1 : reportFailure(output, "Error cannot create", errno);
}

// Closes and removes what has not been put in place, at whatever stage an output is.
static void abandonOutputs(OutputFile* outputs, int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (outputs[i].file && !outputs[i].pending.file)
            fclose(outputs[i].file);
        outputs[i].file = nullptr;
        dropPendingFile(&outputs[i].pending);
    }
}

// The last bytes reach the disk here, or do not.
static bool finishOutput(OutputFile* output)
{
    if (output->pending.file)
        return finishPendingFile(&output->pending);
    bool whole = !ferror(output->file);
    whole = fclose(output->file) == 0 && whole;
    output->file = nullptr;
    return whole;
}

int closeOutput(OutputFile* output, bool written)
{
    int reason = written ? 0 : causeOfFailure();
    errno = reason;
    bool whole = finishOutput(output) && written;
    if (reason == 0)
        reason = causeOfFailure();
    output->file = nullptr;
    if (whole)
        return 1;
    abandonOutputs(output, 1);
    return reportFailure(output, "Error cannot write", reason);
}

int commitOutputs(OutputFile* outputs, int count, bool whole)
{
    std::vector<PendingFile> pending;
    std::vector<OutputFile*> owners;
    for (int i = 0; whole && i < count; ++i)
    {
        if (!outputs[i].pending.file) // cleared, or written where it belongs
            continue;
        pending.push_back(outputs[i].pending);
        owners.push_back(&outputs[i]);
    }
    size_t placed = 0;
    if (!pending.empty())
        placed = static_cast<size_t>(placePendingFiles(pending.data(), static_cast<int>(pending.size())));
    int reason = errno;
    for (size_t i = 0; i < pending.size(); ++i)
        owners[i]->pending = pending[i];
    abandonOutputs(outputs, count);
    if (placed < pending.size())
        return reportFailure(owners[placed], "Error cannot write", reason);
    return whole;
}

void dropOutput(OutputFile* output)
{
    abandonOutputs(output, 1);
}

int commitOutput(OutputFile* output, bool written)
{
    return closeOutput(output, written) && commitOutputs(output, 1, true);
}
