// Windows twin of process_runner_posix.cpp: CreateProcessA with pipes. The
// child runs in a job object, so that a run that hangs is ended together
// with the unpacker runs it started.
#include "e2e/process_runner.h"

#include <windows.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

namespace e2e {

const char kPathListSeparator[] = ";";

namespace {

// The inverse of the C runtime's split: quotes where needed, backslashes
// doubled only before a quote.
std::string quoted(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos) return argument;
    std::string result = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        result.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
        backslashes = 0;
        result += c;
    }
    result.append(backslashes * 2, '\\');
    return result + "\"";
}

class Handle {
public:
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { reset(); }
    HANDLE* out() { return &value_; }
    HANDLE get() const { return value_; }
    void reset() {
        if (value_ != nullptr && value_ != INVALID_HANDLE_VALUE) CloseHandle(value_);
        value_ = nullptr;
    }

private:
    HANDLE value_ = nullptr;
};

void drain(HANDLE pipe, std::string* into) {
    char buffer[65536];
    DWORD count = 0;
    while (ReadFile(pipe, buffer, sizeof buffer, &count, nullptr) && count > 0) into->append(buffer, count);
}

}  // namespace

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> result;
    char* block = GetEnvironmentStringsA();
    if (block == nullptr) return result;
    for (const char* entry = block; *entry != '\0'; entry += std::strlen(entry) + 1) {
        if (entry[0] != '=') result.emplace_back(entry);  // "=C:=C:\..." are per-drive directories
    }
    FreeEnvironmentStringsA(block);
    return result;
}

ProcessResult runProcess(const ProcessRequest& request) {
    ProcessResult result;
    if (request.arguments.empty()) return result;
    std::string line;
    for (const std::string& argument : request.arguments) line += (line.empty() ? "" : " ") + quoted(argument);
    std::vector<char> commandLine(line.begin(), line.end());
    commandLine.push_back('\0');
    std::string environment;
    for (const std::string& entry : request.environment) environment.append(entry).push_back('\0');
    environment.push_back('\0');

    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    Handle outRead, outWrite, errRead, errWrite, input;
    if (!CreatePipe(outRead.out(), outWrite.out(), &inheritable, 0)) return result;
    if (!CreatePipe(errRead.out(), errWrite.out(), &inheritable, 0)) return result;
    SetHandleInformation(outRead.get(), HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(errRead.get(), HANDLE_FLAG_INHERIT, 0);
    *input.out() = CreateFileA(request.inputFile.empty() ? "NUL" : request.inputFile.c_str(), GENERIC_READ,
                               FILE_SHARE_READ, &inheritable, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (input.get() == INVALID_HANDLE_VALUE) return result;

    STARTUPINFOA startup;
    std::memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = outWrite.get();
    startup.hStdError = errWrite.get();
    PROCESS_INFORMATION started;
    std::memset(&started, 0, sizeof started);
    Handle job;
    *job.out() = CreateJobObjectA(nullptr, nullptr);

    const auto start = std::chrono::steady_clock::now();
    const BOOL created = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE,
                                        CREATE_SUSPENDED | CREATE_NO_WINDOW, environment.data(),
                                        request.directory.c_str(), &startup, &started);
    outWrite.reset();
    errWrite.reset();
    input.reset();
    if (!created) return result;
    Handle process, thread;
    *process.out() = started.hProcess;
    *thread.out() = started.hThread;
    if (job.get() != nullptr) AssignProcessToJobObject(job.get(), process.get());
    ResumeThread(thread.get());
    result.started = true;

    // One reader per pipe, so that neither can fill up while we wait.
    std::thread errorReader(drain, errRead.get(), &result.errorOutput);
    std::thread outputReader(drain, outRead.get(), &result.output);
    const auto limit = std::chrono::duration<double>(request.timeoutSeconds);
    const DWORD waitMilliseconds = static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(limit).count());
    if (WaitForSingleObject(process.get(), waitMilliseconds) != WAIT_OBJECT_0) {
        result.timedOut = true;
        if (job.get() != nullptr) TerminateJobObject(job.get(), 1);
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), 5000);
    }
    // The converter's unpacker runs inherit no handle, so the pipes close
    // with the program; a job member still running is ended all the same.
    if (job.get() != nullptr) TerminateJobObject(job.get(), 1);
    outputReader.join();
    errorReader.join();
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    DWORD code = 0;
    if (!result.timedOut && GetExitCodeProcess(process.get(), &code)) {
        result.exitCode = static_cast<int>(code);
        // abort() ends a Windows program with exit code 3 and no signal.
        if (code == 3) result.signal = SIGABRT;
    }
    return result;
}

}  // namespace e2e
