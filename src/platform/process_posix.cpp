// POSIX twin of process_win32.cpp: processes and interruptions. A started
// program leads a process group of its own and dies with the converter, as
// the members of the Windows twin's job object do.
#include "platform/platform.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace platform {

struct Process::State {
    pid_t pid = 0;
    int outputPipe = -1;  // the read end of a captured output, until wait drains it
    bool ended = false;   // reaped: exitCode holds its code
    std::uint32_t exitCode = 0;
};

namespace {

// The processes started and not yet reaped, each the leader of its own
// process group, for the signal handler to stop. Probes are never reaped and
// stay listed; as zombies their ids can't be reused.
constexpr int kChildSlots = 32;
std::atomic<pid_t> children[kChildSlots];

void listChild(pid_t pid) {
    for (std::atomic<pid_t>& slot : children) {
        pid_t free = 0;
        if (slot.compare_exchange_strong(free, pid)) return;
    }
}

void unlistChild(pid_t pid) {
    for (std::atomic<pid_t>& slot : children) {
        pid_t listed = pid;
        if (slot.compare_exchange_strong(listed, 0)) return;
    }
}

const int kInterruptions[] = {SIGINT, SIGTERM, SIGHUP};

// The places a bare program name is tried, in PATH order, as posix_spawnp
// tries them. Built before the fork, so the child only calls exec.
std::vector<std::string> programCandidates(const std::string& program) {
    if (program.find('/') != std::string::npos) return {program};
    const char* searchPath = std::getenv("PATH");
    const std::string list = searchPath != nullptr ? searchPath : "/bin:/usr/bin";
    std::vector<std::string> candidates;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = list.find(':', begin);
        std::string directory = list.substr(begin, end == std::string::npos ? std::string::npos : end - begin);
        candidates.push_back(directory.empty() ? program : directory + "/" + program);
        if (end == std::string::npos) break;
        begin = end + 1;
    }
    return candidates;
}

// The child's side of startProcess: async-signal-safe calls only. Returns
// the errno of the failed start.
int becomeProgram(pid_t parent, const std::vector<std::string>& candidates, char* const* argv,
                  const sigset_t& callerMask, const int streams[3]) {
    setpgid(0, 0);
    // Killed with the converter, even by SIGKILL, so that 7-Zip can't go on
    // filling TMP for minutes.
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) return ESRCH;
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (const int signal : kInterruptions) sigaction(signal, &standard, nullptr);
    sigprocmask(SIG_SETMASK, &callerMask, nullptr);
    // The hidden console: the tool's streams go nowhere, unless captured.
    const int nowhere = open("/dev/null", O_RDWR);
    if (nowhere < 0) return errno;
    for (int stream = 0; stream < 3; ++stream) {
        if (dup2(streams[stream] >= 0 ? streams[stream] : nowhere, stream) < 0) return errno;
    }
    if (nowhere > 2) close(nowhere);
    // As posix_spawnp: a candidate that is missing or not ours to run sends
    // the search on; any other failure ends it.
    int failure = ENOENT;
    for (const std::string& candidate : candidates) {
        execv(candidate.c_str(), argv);
        if (errno != EACCES && errno != ENOENT && errno != ENOTDIR && errno != ESTALE) return errno;
        if (errno == EACCES || failure != EACCES) failure = errno;
    }
    return failure;
}

// Moves a descriptor above the standard ones, which a converter started with
// closed streams would hand out first: the child's dup2 onto 0, 1 and 2 must
// not overwrite a source it still needs.
int aboveStandardStreams(int fd) {
    if (fd > 2) return fd;
    const int moved = fcntl(fd, F_DUPFD_CLOEXEC, 3);
    close(fd);
    return moved;
}

// Pipes for a captured program: its input holds one empty line and is
// closed behind it; its output and error share one pipe. All ends are
// close-on-exec; the child's copies on 0, 1 and 2 are not.
struct CapturePipes {
    int input = -1;   // the child's standard input
    int output = -1;  // the child's standard output and error
    int reader = -1;  // ours
    bool open() {
        int in[2];
        int out[2];
        if (pipe2(in, O_CLOEXEC) != 0) return false;
        if (pipe2(out, O_CLOEXEC) != 0) {
            close(in[0]);
            close(in[1]);
            return false;
        }
        (void)!write(in[1], "\n", 1);
        close(in[1]);
        input = aboveStandardStreams(in[0]);
        reader = aboveStandardStreams(out[0]);
        output = aboveStandardStreams(out[1]);
        if (input >= 0 && reader >= 0 && output >= 0) return true;
        closeChildEnds();
        if (reader >= 0) close(reader);
        reader = -1;
        return false;
    }
    void closeChildEnds() {
        if (input >= 0) close(input);
        if (output >= 0) close(output);
        input = output = -1;
    }
};

// Waits for pid and takes it off the list; false when it can't be reaped.
bool reap(pid_t pid, int* status) {
    pid_t result;
    do {
        result = waitpid(pid, status, 0);
    } while (result < 0 && errno == EINTR);
    if (result != pid) return false;
    unlistChild(pid);
    return true;
}

// Reads a captured output to its end: the writer's exit, or its kill by the
// interruption handler, closes the pipe.
void drainOutput(int pipe, std::string& output) {
    char block[16384];
    for (;;) {
        const ssize_t got = read(pipe, block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        const std::size_t room = kCapturedOutputLimit - output.size();
        output.append(block, std::min(room, static_cast<std::size_t>(got)));
    }
    close(pipe);
}

}  // namespace

// Out of line, where State is complete.
Process::Process() = default;
Process::~Process() = default;

namespace {

// Forks the child that becomes the program, with the interruptions held back
// until it is listed: the handler must know every process it has to stop.
// -1 when the fork fails. A failed exec writes its errno to reportWriter.
pid_t forkProgram(const std::vector<std::string>& candidates, char* const* argv, const int streams[3],
                  int reportWriter) {
    sigset_t interruptions;
    sigset_t callerMask;
    sigemptyset(&interruptions);
    for (const int signal : kInterruptions) sigaddset(&interruptions, signal);
    sigprocmask(SIG_BLOCK, &interruptions, &callerMask);
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0) {
        const int failure = becomeProgram(parent, candidates, argv, callerMask, streams);
        (void)!write(reportWriter, &failure, sizeof failure);
        _exit(127);
    }
    if (pid > 0) {
        setpgid(pid, pid);  // also here: the handler may stop the group before the child has made it
        listChild(pid);
    }
    sigprocmask(SIG_SETMASK, &callerMask, nullptr);
    return pid;
}

// True when the exec reported a failure before the pipe closed.
bool execFailed(int reportReader) {
    int failure = 0;
    ssize_t got;
    do {
        got = read(reportReader, &failure, sizeof failure);
    } while (got < 0 && errno == EINTR);
    close(reportReader);
    return got > 0;
}

}  // namespace

bool Process::start(const char* commandLine, ProcessStreams streams) {
    const std::vector<std::string> arguments = splitCommandLine(commandLine);
    if (arguments.empty() || arguments[0].empty()) return false;
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    CapturePipes capture;
    if (streams == ProcessStreams::kCaptured && !capture.open()) return false;
    const int childStreams[3] = {capture.input, capture.output, capture.output};
    // A failed exec is reported through a pipe that a successful one closes,
    // as CreateProcessA reports a program that can't start.
    int report[2];
    pid_t pid = -1;
    if (pipe2(report, O_CLOEXEC) == 0) {
        pid = forkProgram(programCandidates(arguments[0]), argv.data(), childStreams, report[1]);
        ::close(report[1]);
        if (execFailed(report[0]) && pid > 0) {
            int status = 0;
            reap(pid, &status);
            pid = -1;
        }
    }
    capture.closeChildEnds();
    if (pid < 0) {
        if (capture.reader >= 0) ::close(capture.reader);
        return false;
    }
    state_ = std::make_unique<State>();
    state_->pid = pid;
    state_->outputPipe = capture.reader;
    return true;
}

void Process::wait() {
    // Once reaped, the pid may belong to another program.
    if (state_ == nullptr || state_->ended) return;
    if (state_->outputPipe >= 0) drainOutput(state_->outputPipe, output_);
    state_->outputPipe = -1;
    int status = 0;
    if (!reap(state_->pid, &status)) return;
    // The pid is reaped here, so its code is kept in the state.
    state_->ended = true;
    state_->exitCode = static_cast<std::uint32_t>(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
}

bool Process::exitCode(std::uint32_t* code) const {
    if (state_ == nullptr || !state_->ended) return false;
    *code = state_->exitCode;
    return true;
}

void Process::close() {
    if (state_ == nullptr) return;
    // A pid has no handle to close; one never reaped stays listed, for the
    // handler to stop.
    if (state_->outputPipe >= 0) ::close(state_->outputPipe);
    state_.reset();
}

// --- Interruption ------------------------------------------------------------

namespace {

volatile sig_atomic_t recordedSignal = 0;

[[noreturn]] void endBySignal(int signal) {
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigaction(signal, &standard, nullptr);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, signal);
    sigprocmask(SIG_UNBLOCK, &only, nullptr);
    raise(signal);
    _exit(128 + signal);  // not reached: the default action ends the process
}

void onInterruption(int signal) {
    if (recordedSignal != 0) endBySignal(signal);  // a second one: no clean-up
    recordedSignal = signal;
    for (std::atomic<pid_t>& slot : children) {
        const pid_t pid = slot.load();
        if (pid > 0) kill(-pid, SIGKILL);
    }
}

}  // namespace

void handleInterruptions() {
    struct sigaction action {};
    action.sa_handler = onInterruption;
    // No SA_RESTART: a wait for the step number on standard input ends, and
    // the run reaches its next stop.
    action.sa_flags = 0;
    sigemptyset(&action.sa_mask);
    for (const int signal : kInterruptions) sigaddset(&action.sa_mask, signal);
    for (const int signal : kInterruptions) {
        // A signal ignored from the start stays ignored: nohup and a
        // background job of a script rely on it.
        struct sigaction current {};
        if (sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN) continue;
        sigaction(signal, &action, nullptr);
    }
}

bool interrupted() { return recordedSignal != 0; }

void endByInterruption() {
    std::fflush(stdout);
    endBySignal(recordedSignal);
}

}  // namespace platform
