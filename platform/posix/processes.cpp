// platform/posix/processes.cpp - children by fork and exec, whose lines go to files in memory
#include "platform/processes.h"

#include "platform/pending_files.h"
#include "platform/refused_memory.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __linux__
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#endif

struct Child
{
    pid_t id; // 0: the entry is free
    size_t which;
    int out, err; // what it prints
};

// The signal handler reads the table, so the signals that it handles are blocked while the table changes.
static Child children[programLimit];
constexpr int endingSignals[] = { SIGINT, SIGTERM, SIGHUP };

static sigset_t blockSignals()
{
    sigset_t ending, before;
    sigemptyset(&ending);
    for (int signalNumber : endingSignals)
        sigaddset(&ending, signalNumber);
    sigprocmask(SIG_BLOCK, &ending, &before);
    return before;
}

static void restoreSignals(const sigset_t& before)
{
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

// Ends the children first, so that nothing runs or lies about any more when the caller sees this process end.
extern "C" void endChildrenBySignal(int signalNumber)
{
    for (const Child& child : children)
        if (child.id)
        {
            kill(child.id, signalNumber);
            kill(child.id, SIGCONT); // a stopped one takes no signal
        }
    for (const Child& child : children)
        while (child.id && waitpid(child.id, nullptr, 0) < 0 && errno == EINTR)
            continue;
    removePendingFiles();
    raise(signalNumber); // delivered after the handler has returned, with its default effect
}

// A signal that is ignored, as under nohup, stays ignored, also in the children.
static void endChildrenOnSignals()
{
    static bool done;
    if (done)
        return;
    done = true;
    struct sigaction action = {};
    action.sa_handler = endChildrenBySignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int signalNumber : endingSignals)
        sigaddset(&action.sa_mask, signalNumber);
    for (int signalNumber : endingSignals)
    {
        struct sigaction present;
        if (sigaction(signalNumber, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            sigaction(signalNumber, &action, nullptr);
    }
}

int usableProcessors()
{
#ifdef __linux__
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof set, &set) == 0)
        return CPU_COUNT(&set);
#endif
    long count = sysconf(_SC_NPROCESSORS_ONLN);
    return count < 1 ? 1 : static_cast<int>(count);
}

// The descriptor, or another one for its file, above those of the standard streams, which may be closed.
static int aboveStandardStreams(int file)
{
    if (file < 0 || file > STDERR_FILENO)
        return file;
    int above = fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(file);
    return above;
}

// A file for what a child prints. Returns -1 with errno set.
static int openCollecting()
{
#ifdef __linux__
    return aboveStandardStreams(memfd_create("kbx", MFD_CLOEXEC));
#else
    FILE* file = tmpfile();
    if (!file)
        return -1;
    int copy = fcntl(fileno(file), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    fclose(file);
    return copy;
#endif
}

static void closeFiles(const Child& child)
{
    for (int file : { child.out, child.err })
        if (file >= 0)
            close(file);
}

// In the new process: connects the streams and becomes the program. Nothing here requests memory.
[[noreturn]] static void becomeProgram(const Child& child, char* const* words, pid_t parent, const sigset_t& signals)
{
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent)
        _exit(1);
#else
    (void)parent;
#endif
    for (int signalNumber : endingSignals)
    {
        struct sigaction present;
        if (sigaction(signalNumber, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            signal(signalNumber, SIG_DFL);
    }
    restoreSignals(signals);
    int nothing = open("/dev/null", O_RDONLY);
    if (nothing >= 0 && dup2(nothing, STDIN_FILENO) >= 0 && dup2(child.out, STDOUT_FILENO) >= 0 &&
        dup2(child.err, STDERR_FILENO) >= 0)
    {
        if (nothing > STDERR_FILENO)
            close(nothing);
        execv("/proc/self/exe", words);
    }
    const char* why = strerror(errno);
    (void)!write(child.err, "kbx: cannot be started again: ", 30);
    (void)!write(child.err, why, strlen(why));
    (void)!write(child.err, "\n", 1);
    _exit(1);
}

static Child* freeEntry()
{
    for (Child& child : children)
        if (!child.id)
            return &child;
    errno = EAGAIN;
    return nullptr;
}

int startProgram(const std::vector<std::string>& arguments, size_t which)
{
    endChildrenOnSignals();
    Child* entry = freeEntry();
    if (!entry)
        return 0;
    std::vector<char*> words = { const_cast<char*>("kbx") };
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    Child child = { -1, which, openCollecting(), openCollecting() };
    if (child.out >= 0 && child.err >= 0)
    {
        fflush(nullptr); // what is buffered must not be printed twice
        pid_t parent = getpid();
        sigset_t before = blockSignals();
        child.id = fork();
        if (child.id == 0)
            becomeProgram(child, words.data(), parent, before);
        if (child.id > 0)
            *entry = child;
        restoreSignals(before);
    }
    if (child.id > 0)
        return 1;
    int reason = errno;
    if (reason == ENOMEM)
        noteRefusedMemory();
    closeFiles(child);
    errno = reason;
    return 0;
}

static std::string textOf(int file)
{
    std::string text;
    char bytes[4096];
    off_t place = 0;
    for (ssize_t count; (count = pread(file, bytes, sizeof bytes, place)) > 0; place += count)
        text.append(bytes, static_cast<size_t>(count));
    return text;
}

static void describeEnd(EndedProgram* ended, int status)
{
    ended->status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (ended->status >= 0)
        return;
    int signalNumber = WTERMSIG(status);
    ended->cause = "ended by signal " + std::to_string(signalNumber) + " (" + strsignal(signalNumber) + ")";
}

// Takes an ended child out of the table. Only then its number may belong to another process.
static Child forgetChild(pid_t id, int* status)
{
    Child found = {};
    sigset_t before = blockSignals();
    waitpid(id, status, 0);
    for (Child& child : children)
    {
        if (child.id != id)
            continue;
        found = child;
        child.id = 0;
    }
    restoreSignals(before);
    return found;
}

int waitForProgram(EndedProgram* ended)
{
    siginfo_t facts;
    int found;
    do
        found = waitid(P_ALL, 0, &facts, WEXITED | WNOWAIT);
    while (found < 0 && errno == EINTR);
    if (found < 0)
        return 0;
    int status = 0;
    Child child = forgetChild(facts.si_pid, &status);
    if (!child.id)
        return waitForProgram(ended); // not one of these
    *ended = { child.which, 0, {}, textOf(child.out), textOf(child.err) };
    describeEnd(ended, status);
    closeFiles(child);
    return 1;
}
