// Windows twin of platform_posix.cpp: the Win32 and C runtime calls the logic
// was written against. Where the two files differ in more than the call, the
// comment says how both are kept to one behaviour.
// rand_s is declared only on request.
#define _CRT_RAND_S
#include "platform/platform.h"

#include <windows.h>

#include <direct.h>
#include <io.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/random_fallback.h"

namespace platform {

const char kPathSeparator = '\\';
const char kPathSeparatorText[] = "\\";

void currentDirectory(char* buffer, int size) {
    if (size <= 0) return;
    // The result is the length without the terminator, or the size needed
    // (terminator included) when the buffer is too small.
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(size), buffer);
    if (length == 0 || length >= static_cast<DWORD>(size)) buffer[0] = '\0';
}

bool fullPath(char* buffer, const char* path, int limit) {
    if (limit <= 0) return false;
    return _fullpath(buffer, path, static_cast<size_t>(limit)) != nullptr;
}

namespace {

// "C:\" or "\": a root, which keeps its separator.
bool isRoot(const char* path, std::size_t length) {
    return length == 1 || (length == 3 && path[1] == ':');
}

}  // namespace

bool statPath(const char* path, bool* isDirectory) {
    const std::size_t length = std::strlen(path);
    // The older runtime refuses "dir\" by itself; the universal one would
    // accept it, so the rule is kept here for both.
    if (length > 1 && isPathSeparator(path[length - 1]) && !isRoot(path, length)) return false;
    struct _stat64i32 info;
    if (_stat64i32(path, &info) != 0) return false;
    if (isDirectory != nullptr) *isDirectory = (info.st_mode & _S_IFDIR) != 0;
    return true;
}

std::string pathExtension(const char* name) {
    // _splitpath copies without a bound; buffers as long as the name itself
    // hold any part of it.
    const std::size_t size = std::strlen(name) + 1;
    std::vector<char> stem(size), extension(size);
    _splitpath(name, nullptr, nullptr, stem.data(), extension.data());
    return std::string(extension.data());
}

std::FILE* openJobFile(const char* path) {
    // The file system ignores case by itself, and fopen refuses a directory.
    return std::fopen(path, "r");
}

void* allocateBulkMemory(std::size_t size) {
    // Large pages need a privilege a user rarely holds; committed pages come
    // zeroed all the same.
    return VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

// --- The temporary folder ---------------------------------------------------

std::uint32_t randomNumber() {
    unsigned int value = 0;
    if (rand_s(&value) == 0) return value;
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    return fallbackRandomNumber(static_cast<std::uint64_t>(ticks.QuadPart), GetCurrentProcessId());
}

DirectoryCreation createDirectory(const char* path) {
    if (CreateDirectoryA(path, nullptr)) return DirectoryCreation::kCreated;
    return GetLastError() == ERROR_ALREADY_EXISTS ? DirectoryCreation::kExists : DirectoryCreation::kFailed;
}

// --- Directory search ------------------------------------------------------

namespace {

std::uint32_t recordAttributes(const WIN32_FIND_DATAA& data) {
    std::uint32_t value = 0;
    // A link or junction to a directory is no directory to descend: a walk
    // that deletes must never reach outside its tree (lstat on POSIX).
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
        (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        value |= kAttributeDirectory;
    }
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) value |= kAttributeReadOnly;
    return value;
}

bool isDotEntry(const std::string& name) { return name == "." || name == ".."; }

}  // namespace

bool DirectorySearch::findFirst(const char* pattern, FindRecord& record) {
    close();
    WIN32_FIND_DATAA data;
    HANDLE handle = FindFirstFileA(pattern, &data);
    if (handle == INVALID_HANDLE_VALUE) return false;
    std::vector<FindRecord> dots, names;
    do {
        FindRecord entry;
        entry.name = data.cFileName;
        entry.attributes = recordAttributes(data);
        (isDotEntry(entry.name) ? dots : names).push_back(entry);
    } while (FindNextFileA(handle, &data));
    FindClose(handle);

    // The whole listing is read at once, "." and ".." first and the rest in
    // byte order, as on POSIX: a job expands in the same order everywhere,
    // and deleting entries during a walk can't disturb it.
    std::sort(dots.begin(), dots.end(), [](const FindRecord& a, const FindRecord& b) { return a.name < b.name; });
    std::sort(names.begin(), names.end(), [](const FindRecord& a, const FindRecord& b) { return a.name < b.name; });
    entries_ = std::move(dots);
    entries_.insert(entries_.end(), names.begin(), names.end());
    open_ = true;
    next_ = 1;
    record = entries_[0];
    return true;
}

void makeWritable(const char* path) { _chmod(path, _S_IWRITE); }

bool deleteFile(const char* path) {
    if (DeleteFileA(path)) return true;
    // A link to a directory is listed as a file (see recordAttributes) and
    // goes as unlink takes it on POSIX; a real directory stays.
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    const DWORD link = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return (attributes & link) == link && (attributes & FILE_ATTRIBUTE_READONLY) == 0 && RemoveDirectoryA(path);
}

bool removeDirectory(const char* path) { return RemoveDirectoryA(path) != 0; }

// --- Processes ---------------------------------------------------------------

namespace {

HANDLE asHandle(std::intptr_t value) { return reinterpret_cast<HANDLE>(value); }

// The run's job object: every started process goes in, the handler ends
// them all at once, and closing the last handle to it, as the system does
// when the converter is killed hard, ends them too.
std::atomic<HANDLE> runJob{nullptr};

HANDLE jobForChildren() {
    HANDLE job = runJob.load();
    if (job != nullptr) return job;
    job = CreateJobObjectA(nullptr, nullptr);
    if (job == nullptr) return nullptr;
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits;
    std::memset(&limits, 0, sizeof limits);
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    runJob.store(job);
    return job;
}

// Pipes for a captured program: its input holds one empty line and is
// closed behind it; its output and error share one pipe. Only the child's
// ends are inheritable.
struct CapturePipes {
    HANDLE input = nullptr;   // the child's standard input
    HANDLE output = nullptr;  // the child's standard output and error
    HANDLE reader = nullptr;  // ours
    bool open() {
        SECURITY_ATTRIBUTES inherited;
        std::memset(&inherited, 0, sizeof inherited);
        inherited.nLength = sizeof inherited;
        inherited.bInheritHandle = TRUE;
        HANDLE inputWriter = nullptr;
        if (!CreatePipe(&input, &inputWriter, &inherited, 0)) return false;
        DWORD written = 0;
        WriteFile(inputWriter, "\r\n", 2, &written, nullptr);
        CloseHandle(inputWriter);
        if (!CreatePipe(&reader, &output, &inherited, 0)) {
            closeChildEnds();
            return false;
        }
        SetHandleInformation(reader, HANDLE_FLAG_INHERIT, 0);
        return true;
    }
    void closeChildEnds() {
        if (input != nullptr) CloseHandle(input);
        if (output != nullptr) CloseHandle(output);
        input = output = nullptr;
    }
};

}  // namespace

bool startProcess(const char* commandLine, ProcessHandle* process, ProcessStreams streams) {
    // CreateProcessA may write into the command line.
    std::vector<char> line(commandLine, commandLine + std::strlen(commandLine) + 1);
    STARTUPINFOA startup;
    std::memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    CapturePipes capture;
    const bool captured = streams == ProcessStreams::kCaptured;
    if (captured) {
        if (!capture.open()) return false;
        startup.dwFlags |= STARTF_USESTDHANDLES;
        startup.hStdInput = capture.input;
        startup.hStdOutput = capture.output;
        startup.hStdError = capture.output;
    }
    PROCESS_INFORMATION started;
    std::memset(&started, 0, sizeof started);
    // Suspended until it is in the job, so that nothing it starts escapes.
    const BOOL created = CreateProcessA(nullptr, line.data(), nullptr, nullptr, captured ? TRUE : FALSE,
                                        CREATE_NEW_CONSOLE | CREATE_SUSPENDED, nullptr, nullptr, &startup, &started);
    capture.closeChildEnds();
    if (!created) {
        if (capture.reader != nullptr) CloseHandle(capture.reader);
        return false;
    }
    // Where the job can't be had (a system without nested jobs, when the
    // converter itself runs in one) the process still runs, unguarded.
    const HANDLE job = jobForChildren();
    if (job != nullptr) AssignProcessToJobObject(job, started.hProcess);
    ResumeThread(started.hThread);
    *process = ProcessHandle();
    process->id = reinterpret_cast<std::intptr_t>(started.hProcess);
    process->thread = reinterpret_cast<std::intptr_t>(started.hThread);
    if (capture.reader != nullptr) process->outputPipe = reinterpret_cast<std::intptr_t>(capture.reader);
    return true;
}

namespace {

// Reads a captured output to its end: the writer's exit, or its end through
// the job object, breaks the pipe.
void drainOutput(ProcessHandle* process) {
    if (process->outputPipe == -1) return;
    const HANDLE pipe = asHandle(process->outputPipe);
    char block[16384];
    DWORD got = 0;
    while (ReadFile(pipe, block, sizeof block, &got, nullptr) && got > 0) {
        const std::size_t room = kCapturedOutputLimit - process->output.size();
        process->output.append(block, std::min<std::size_t>(room, got));
    }
    CloseHandle(pipe);
    process->outputPipe = -1;
}

}  // namespace

void waitForProcess(ProcessHandle* process) {
    drainOutput(process);
    if (process->id == 0) return;
    if (WaitForSingleObject(asHandle(process->id), INFINITE) == WAIT_OBJECT_0) process->ended = true;
}

bool processExitCode(ProcessHandle* process, std::uint32_t* code) {
    if (process->id == 0) return false;
    DWORD exitCode = 0;
    if (!GetExitCodeProcess(asHandle(process->id), &exitCode)) return false;
    process->exitCode = exitCode;
    *code = exitCode;
    return true;
}

void closeProcess(ProcessHandle* process) {
    if (process->outputPipe != -1) CloseHandle(asHandle(process->outputPipe));
    if (process->thread != 0) CloseHandle(asHandle(process->thread));
    if (process->id != 0) CloseHandle(asHandle(process->id));
    *process = ProcessHandle();
}

// --- Interruption ------------------------------------------------------------

namespace {

// STATUS_CONTROL_C_EXIT: the code of a console program stopped by Ctrl-C.
constexpr UINT kStoppedByControlC = 0xC000013Au;

std::atomic<DWORD> recordedEvent{0};
std::atomic<bool> cleanedUp{false};
void (*cleanUpAction)(void*) = nullptr;
void* cleanUpContext = nullptr;

[[noreturn]] void endStopped() {
    std::fflush(stdout);
    ExitProcess(kStoppedByControlC);
}

// Runs on a thread of its own, which the system starts for each event.
BOOL WINAPI onControlEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
    DWORD none = 0;
    if (!recordedEvent.compare_exchange_strong(none, event + 1)) ExitProcess(kStoppedByControlC);  // a second one
    const HANDLE job = runJob.load();
    if (job != nullptr) TerminateJobObject(job, kStoppedByControlC);
    // Closing the console ends the process once this returns: give the
    // clean-up in the main thread the few seconds the system allows.
    if (event == CTRL_CLOSE_EVENT) {
        for (int waited = 0; waited < 45 && !cleanedUp.load(); ++waited) Sleep(100);
    }
    return TRUE;
}

}  // namespace

void handleInterruptions(void (*cleanUp)(void*), void* context) {
    cleanUpAction = cleanUp;
    cleanUpContext = context;
    SetConsoleCtrlHandler(onControlEvent, TRUE);
}

void stopIfInterrupted() {
    if (recordedEvent.load() == 0) return;
    if (cleanUpAction != nullptr) cleanUpAction(cleanUpContext);
    cleanedUp.store(true);
    endStopped();
}

}  // namespace platform
