// cli/jobs.h - kbx running itself for several files at a time
#pragma once
#include "platform/processes.h"

#include <functional>
#include <string>
#include <vector>

struct Jobs
{
    size_t count; // one for each file
    int atOnce;   // 0: as many as there are processors

    // The command line of a job, called when its turn comes. Without words nothing runs, and the job has ended with 0.
    std::function<std::vector<std::string>(size_t job)> words;

    // Called for every job, in their order, as soon as it and all before it have ended. which is the job.
    std::function<void(const EndedProgram& ended)> ended;
};

// Runs all jobs. On a terminal, a line on standard error shows how many are done, how fast, and the time left.
void runJobs(const Jobs& jobs);
