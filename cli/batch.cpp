// cli/batch.cpp - many files into a folder
//
// Every file is a call of its own for that file alone, so its result and its lines are those of such a call, and a file
// that brings its process down leaves the others alone.
#include "cli/batch.h"

#include "cli/copy_collisions.h"
#include "cli/jobs.h"
#include "cli/targets.h"
#include "cli/written.h"
#include "platform/boxes.h"
#include "platform/folders.h"
#include "platform/terminal/terminal.h"

#include <errno.h>
#include <string.h>

struct BatchCounts
{
    size_t written = 0, kept = 0, failed = 0;
};

static std::vector<std::string> wordsFor(const Target& target, const Arguments& arguments)
{
    bool converts = arguments.command == Command::convert;
    std::vector<std::string> words = { converts ? "convert" : "render" };
    words.insert(words.end(), arguments.options.begin(), arguments.options.end());
    if (!converts)
        words.push_back("--output=" + target.output);
    words.push_back("--"); // a name may begin with a dash
    words.push_back(target.input);
    if (converts)
        words.push_back(target.output);
    return words;
}

// "200 files: 197 written, 2 kept, 1 failed"
static std::string countsText(const BatchCounts& counts)
{
    size_t all = counts.written + counts.kept + counts.failed;
    std::string text =
        std::to_string(all) + (all == 1 ? " file: " : " files: ") + std::to_string(counts.written) + " written";
    if (counts.kept > 0)
        text += ", " + std::to_string(counts.kept) + " kept";
    return text + ", " + std::to_string(counts.failed) + " failed";
}

static void noteEnd(const EndedProgram& ended, const Target& target, BatchCounts* counts)
{
    printLines(ended.err);
    if (ended.status < 0)
        explainFailure(target.input.c_str(), ended.cause.c_str());
    ++(ended.status == 0 ? counts->written : counts->failed);
}

static BatchCounts runAll(const std::vector<Target>& targets, const Arguments& arguments)
{
    BatchCounts counts;
    std::vector<bool> kept(targets.size());
    auto words = [&](size_t i)
    {
        kept[i] = arguments.noClobber && wouldReplace(targets[i].output);
        return kept[i] ? std::vector<std::string>() : wordsFor(targets[i], arguments);
    };
    auto ended = [&](const EndedProgram& end)
    {
        const Target& target = targets[end.which];
        if (!kept[end.which])
            return noteEnd(end, target, &counts);
        ++counts.kept;
        sayKept(target.output, arguments.load.quiet);
    };
    runJobs({ targets.size(), arguments.jobs, words, ended });
    return counts;
}

int runBatch(const Arguments& arguments)
{
    std::vector<Target> targets = targetsOf(arguments);
    std::vector<std::string> collisions = collisionsOf(targets, arguments.outputDir);
    if (collisions.empty() && arguments.copyTextures)
        collisions = copyCollisionsOf(targets, arguments);
    for (const std::string& line : collisions)
        printLines("kbx: " + line + "\n");
    if (!collisions.empty())
        return 2;
    if (!makeFolder(arguments.outputDir))
    {
        explainFailure(arguments.outputDir.c_str(), strerror(errno));
        return 1;
    }
    BatchCounts counts = runAll(targets, arguments);
    if (counts.failed > 0 || !arguments.load.quiet)
        printLines("kbx: " + countsText(counts) + "\n");
    return counts.failed > 0 ? 1 : 0;
}
