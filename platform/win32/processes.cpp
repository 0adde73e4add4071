// platform/win32/processes.cpp - children in a job object, whose lines go to temporary files
#include "platform/processes.h"

#include "platform/win32/names.h"

#include <errno.h>
#include <stdio.h>
#include <windows.h>

struct Child
{
    size_t which;
    HANDLE out, err; // what it prints
};

static HANDLE running[programLimit]; // the processes, side by side as the operating system wants them
static Child children[programLimit]; // in the same order
static int childCount;

int usableProcessors()
{
    DWORD_PTR ours = 0, all = 0;
    int count = 0;
    if (GetProcessAffinityMask(GetCurrentProcess(), &ours, &all))
        for (; ours; ours &= ours - 1)
            ++count;
    return count < 1 ? 1 : count;
}

// The job ends its processes when its last handle closes, however this process ends.
static HANDLE jobOfChildren()
{
    static HANDLE job;
    if (job)
        return job;
    job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    SetErrorMode(GetErrorMode() | SEM_NOGPFAULTERRORBOX); // a child that crashes shows no window
    return job;
}

// A file that is deleted with its last handle, which children inherit.
static HANDLE openCollecting()
{
    wchar_t folder[MAX_PATH + 1], path[MAX_PATH + 1];
    if (!GetTempPathW(MAX_PATH + 1, folder) || !GetTempFileNameW(folder, L"kbx", 0, path))
        return INVALID_HANDLE_VALUE;
    SECURITY_ATTRIBUTES inherited = { sizeof inherited, nullptr, TRUE };
    return CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

static HANDLE openNothing()
{
    SECURITY_ATTRIBUTES inherited = { sizeof inherited, nullptr, TRUE };
    return CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr);
}

// Appends an argument so that CommandLineToArgvW finds it again: backslashes count double before a quote.
static void appendArgument(std::wstring* line, const std::wstring& argument)
{
    size_t backslashes = 0;
    *line += L" \"";
    for (wchar_t c : argument)
    {
        if (c == L'"')
            line->append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        *line += c;
    }
    line->append(backslashes, L'\\');
    *line += L'"';
}

static std::wstring programPath()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

// Starts the program with only these handles of this process. Returns its handle, or null.
static HANDLE create(const std::wstring& path, std::wstring line, HANDLE (&handles)[3])
{
    SIZE_T listBytes = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &listBytes);
    std::vector<char> list(listBytes);
    STARTUPINFOEXW start = {};
    start.StartupInfo.cb = sizeof start;
    start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    start.StartupInfo.hStdInput = handles[0];
    start.StartupInfo.hStdOutput = handles[1];
    start.StartupInfo.hStdError = handles[2];
    start.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(list.data());
    PROCESS_INFORMATION made = {};
    if (!InitializeProcThreadAttributeList(start.lpAttributeList, 1, 0, &listBytes))
        return nullptr;
    bool created =
        UpdateProcThreadAttribute(start.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles, sizeof handles,
                                  nullptr, nullptr) &&
        CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE,
                       CREATE_SUSPENDED | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr, &start.StartupInfo, &made);
    DeleteProcThreadAttributeList(start.lpAttributeList);
    if (!created)
        return nullptr;
    AssignProcessToJobObject(jobOfChildren(), made.hProcess);
    ResumeThread(made.hThread);
    CloseHandle(made.hThread);
    return made.hProcess;
}

static void closeFile(HANDLE file)
{
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
}

int startProgram(const std::vector<std::string>& arguments, size_t which)
{
    std::wstring path = programPath(), line = L"kbx";
    for (const std::string& argument : arguments)
        appendArgument(&line, wideFromUtf8(argument.c_str()));
    HANDLE handles[3] = { openNothing(), openCollecting(), openCollecting() };
    bool open =
        handles[0] != INVALID_HANDLE_VALUE && handles[1] != INVALID_HANDLE_VALUE && handles[2] != INVALID_HANDLE_VALUE;
    HANDLE process = open && childCount < programLimit ? create(path, line, handles) : nullptr;
    closeFile(handles[0]);
    if (process)
    {
        running[childCount] = process;
        children[childCount++] = { which, handles[1], handles[2] };
        return 1;
    }
    closeFile(handles[1]);
    closeFile(handles[2]);
    errno = EAGAIN;
    return 0;
}

static std::string textOf(HANDLE file)
{
    std::string text;
    char bytes[4096];
    DWORD count = 0;
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    while (ReadFile(file, bytes, sizeof bytes, &count, nullptr) && count > 0)
        text.append(bytes, count);
    CloseHandle(file);
    return text;
}

int waitForProgram(EndedProgram* ended)
{
    constexpr DWORD crashes = 0xC0000000; // from here on the status is the error that ended the process
    if (childCount == 0)
        return 0;
    DWORD first = WaitForMultipleObjects(static_cast<DWORD>(childCount), running, FALSE, INFINITE) - WAIT_OBJECT_0;
    if (first >= static_cast<DWORD>(childCount))
        return 0;
    DWORD status = 0;
    GetExitCodeProcess(running[first], &status);
    CloseHandle(running[first]);
    Child child = children[first];
    --childCount;
    running[first] = running[childCount];
    children[first] = children[childCount];
    *ended = { child.which, static_cast<int>(status), {}, textOf(child.out), textOf(child.err) };
    if (status < crashes)
        return 1;
    char code[32];
    snprintf(code, sizeof code, "ended with error 0x%08lX", static_cast<unsigned long>(status));
    ended->status = -1;
    ended->cause = code;
    return 1;
}
