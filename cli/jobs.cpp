// cli/jobs.cpp - starting jobs, and handing on their ends in order
#include "cli/jobs.h"

#include "platform/terminal/terminal.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <algorithm>
#include <chrono>
#include <optional>

using Clock = std::chrono::steady_clock;

struct JobRun
{
    const Jobs* jobs;
    int atOnce;
    std::vector<std::optional<EndedProgram>> waiting; // ended, while an earlier one still runs
    size_t started = 0, ended = 0, handedOn = 0;
    size_t running = 0;
    Clock::time_point begin = Clock::now();
};

// "12 s", "7 min", "3 h 20 min"
static std::string durationText(double seconds)
{
    auto whole = static_cast<int64_t>(seconds + 0.5);
    if (whole < 120)
        return std::to_string(whole) + " s";
    int64_t minutes = (whole + 30) / 60;
    if (minutes < 120)
        return std::to_string(minutes) + " min";
    return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

static void showProgressOf(const JobRun& run)
{
    std::string text = std::to_string(run.ended) + " of " + std::to_string(run.jobs->count) + " files";
    double seconds = std::chrono::duration<double>(Clock::now() - run.begin).count();
    if (run.ended > 0 && seconds > 0)
    {
        double rate = static_cast<double>(run.ended) / seconds;
        char number[32];
        snprintf(number, sizeof number, rate < 10 ? "%.2g" : "%.0f", rate);
        text += std::string(", ") + number + " a second, " +
                durationText(static_cast<double>(run.jobs->count - run.ended) / rate) + " left";
    }
    showStatusLine(text.c_str());
}

static void noteEnd(JobRun* run, EndedProgram&& ended)
{
    size_t job = ended.which;
    run->waiting[job] = std::move(ended);
    ++run->ended;
    for (; run->handedOn < run->started && run->waiting[run->handedOn]; ++run->handedOn)
    {
        run->jobs->ended(*run->waiting[run->handedOn]);
        run->waiting[run->handedOn].reset();
    }
}

// Starts the next job, or notes its end where there is nothing to run. Returns false when the operating system gives no
// process while others run; they will make room.
static bool startNext(JobRun* run)
{
    size_t job = run->started;
    std::vector<std::string> words = run->jobs->words(job);
    EndedProgram none = { job, 0, {}, {}, {} };
    if (!words.empty() && startProgram(words, job))
    {
        ++run->running;
        ++run->started;
        return true;
    }
    if (!words.empty() && run->running > 0)
        return false;
    if (!words.empty())
    {
        none.status = -1;
        none.cause = std::string("it cannot be started: ") + strerror(errno);
    }
    ++run->started;
    noteEnd(run, std::move(none));
    return true;
}

void runJobs(const Jobs& jobs)
{
    JobRun run = { &jobs, jobs.atOnce, {} };
    run.waiting.resize(jobs.count);
    if (run.atOnce == 0)
        run.atOnce = std::min(usableProcessors(), programLimit);
    while (run.ended < jobs.count)
    {
        while (run.started < jobs.count && run.running < static_cast<size_t>(run.atOnce) && startNext(&run))
            showProgressOf(run);
        EndedProgram ended;
        if (run.running == 0 || !waitForProgram(&ended))
            continue;
        --run.running;
        noteEnd(&run, std::move(ended));
        showProgressOf(run);
    }
    showStatusLine("");
}
