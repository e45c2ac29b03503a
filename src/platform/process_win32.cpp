// Windows twin of process_posix.cpp: processes and interruptions through
// CreateProcessA and the rest of the Win32 calls the logic was written
// against. Every started program sits in the run's job object, which ends
// it with the converter, as the POSIX twin's process groups are ended.
#include "platform/platform.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>

namespace platform {

struct Process::State {
    HANDLE process = nullptr;
    HANDLE thread = nullptr;
    HANDLE outputPipe = nullptr;  // the read end of a captured output, until wait drains it
    bool ended = false;           // waited for: the exit code is final
};

namespace {

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

// Reads a captured output to its end: the writer's exit, or its end through
// the job object, breaks the pipe.
void drainOutput(HANDLE pipe, std::string& output) {
    char block[16384];
    DWORD got = 0;
    while (ReadFile(pipe, block, sizeof block, &got, nullptr) && got > 0) {
        const std::size_t room = kCapturedOutputLimit - output.size();
        output.append(block, std::min<std::size_t>(room, got));
    }
    CloseHandle(pipe);
}

}  // namespace

// Out of line, where State is complete.
Process::Process() = default;
Process::~Process() = default;

bool Process::start(const char* commandLine, ProcessStreams streams) {
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
    // Wine, with many programs starting at once, now and then refuses a
    // start with ERROR_INTERNAL_ERROR before anything of the program ran
    // (a 7-Zip start in one of four CI runs of its suite); such a start is
    // tried once more.
    BOOL created = FALSE;
    for (int attempt = 0; attempt < 2 && created == FALSE; ++attempt) {
        created = CreateProcessA(nullptr, line.data(), nullptr, nullptr, captured ? TRUE : FALSE,
                                 CREATE_NEW_CONSOLE | CREATE_SUSPENDED, nullptr, nullptr, &startup, &started);
        if (created == FALSE && GetLastError() != ERROR_INTERNAL_ERROR) break;
    }
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
    state_ = std::make_unique<State>();
    state_->process = started.hProcess;
    state_->thread = started.hThread;
    state_->outputPipe = capture.reader;
    return true;
}

void Process::wait() {
    if (state_ == nullptr || state_->ended) return;
    if (state_->outputPipe != nullptr) drainOutput(state_->outputPipe, output_);
    state_->outputPipe = nullptr;
    if (WaitForSingleObject(state_->process, INFINITE) == WAIT_OBJECT_0) state_->ended = true;
}

bool Process::exitCode(std::uint32_t* code) const {
    // Before the end GetExitCodeProcess gives STILL_ACTIVE (259), which a
    // program may also end with: only a waited-for code counts, as on POSIX.
    if (state_ == nullptr || !state_->ended) return false;
    DWORD value = 0;
    if (!GetExitCodeProcess(state_->process, &value)) return false;
    *code = value;
    return true;
}

void Process::close() {
    if (state_ == nullptr) return;
    if (state_->outputPipe != nullptr) CloseHandle(state_->outputPipe);
    CloseHandle(state_->thread);
    CloseHandle(state_->process);
    state_.reset();
}

// --- Interruption ------------------------------------------------------------

namespace {

// STATUS_CONTROL_C_EXIT: the code of a console program stopped by Ctrl-C.
constexpr UINT kStoppedByControlC = 0xC000013Au;

std::atomic<DWORD> recordedEvent{0};
std::atomic<bool> cleanedUp{false};

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

void handleInterruptions() { SetConsoleCtrlHandler(onControlEvent, TRUE); }

bool interrupted() { return recordedEvent.load() != 0; }

void endByInterruption() {
    cleanedUp.store(true);
    endStopped();
}

}  // namespace platform
