// POSIX twin of platform_win32.cpp. Where Linux behaves differently from the
// Windows calls the logic was written against, the comment says how it is
// made to behave like Windows.
#include "platform/platform.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/random_fallback.h"

namespace platform {

const char kPathSeparator = '/';
const char kPathSeparatorText[] = "/";

void currentDirectory(char* buffer, int size) {
    if (size <= 0) return;
    if (getcwd(buffer, static_cast<size_t>(size)) == nullptr) buffer[0] = '\0';
}

bool fullPath(char* buffer, const char* path, int limit) {
    std::string joined;
    if (path[0] != '/') {
        char cwd[4096];
        currentDirectory(cwd, sizeof cwd);
        joined = cwd;
        if (path[0] != '\0') joined += '/';  // "" is the directory itself
    }
    joined += path;

    // Fold the components by text, as _fullpath does: no links are followed.
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= joined.size()) {
        std::size_t end = joined.find('/', start);
        if (end == std::string::npos) end = joined.size();
        std::string part = joined.substr(start, end - start);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        start = end + 1;
    }
    std::string result;
    for (const std::string& part : parts) result += "/" + part;
    const bool trailing = joined.size() > 1 && joined.back() == '/' && !parts.empty();
    if (result.empty() || trailing) result += '/';

    if (static_cast<long>(result.size()) + 1 > limit) return false;
    std::memcpy(buffer, result.c_str(), result.size() + 1);
    return true;
}

bool statPath(const char* path, bool* isDirectory) {
    const std::size_t length = std::strlen(path);
    // Windows refuses "dir\" in _stat; only a root keeps its separator.
    if (length > 1 && path[length - 1] == '/') return false;
    struct stat info;
    if (stat(path, &info) != 0) return false;
    if (isDirectory != nullptr) *isDirectory = S_ISDIR(info.st_mode);
    return true;
}

std::string pathExtension(const char* name) {
    const char* dot = nullptr;
    for (const char* p = name; *p != '\0'; ++p) {
        if (isPathSeparator(*p)) dot = nullptr;
        else if (*p == '.') dot = p;
    }
    return dot == nullptr ? std::string() : std::string(dot);
}

namespace {

bool isRegularFile(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && !S_ISDIR(info.st_mode);
}

bool existsAtAll(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

bool equalIgnoringCase(const char* a, const char* b) {
    for (;; ++a, ++b) {
        unsigned char x = static_cast<unsigned char>(*a);
        unsigned char y = static_cast<unsigned char>(*b);
        if (x >= 'A' && x <= 'Z') x = static_cast<unsigned char>(x + 32);
        if (y >= 'A' && y <= 'Z') y = static_cast<unsigned char>(y + 32);
        if (x != y) return false;
        if (x == '\0') return true;
    }
}

// directory/name, where the empty directory is the current one.
std::string joinPath(const std::string& directory, const std::string& name) {
    if (directory.empty()) return name;
    return directory.back() == '/' ? directory + name : directory + "/" + name;
}

// The entry of directory that matches name ignoring case: the exact name
// first, else the first variant in byte order; empty when none.
std::string matchIgnoringCase(const std::string& directory, const std::string& name) {
    if (existsAtAll(joinPath(directory, name))) return name;
    DIR* dir = opendir(directory.empty() ? "." : directory.c_str());
    if (dir == nullptr) return std::string();
    std::string best;
    while (const dirent* entry = readdir(dir)) {
        if (equalIgnoringCase(entry->d_name, name.c_str()) &&
            (best.empty() || std::strcmp(entry->d_name, best.c_str()) < 0)) {
            best = entry->d_name;
        }
    }
    closedir(dir);
    return best;
}

}  // namespace

std::FILE* openJobFile(const char* path) {
    if (!isRegularFile(path)) {
        // A Windows file system ignores case; real jobs rely on it.
        const std::string text = path;
        std::string resolved = !text.empty() && text[0] == '/' ? "/" : "";
        std::size_t start = 0;
        while (start < text.size()) {
            std::size_t end = text.find('/', start);
            if (end == std::string::npos) end = text.size();
            const std::string part = text.substr(start, end - start);
            start = end + 1;
            if (part.empty()) continue;
            const std::string match = part == "." || part == ".." ? part : matchIgnoringCase(resolved, part);
            if (match.empty()) return nullptr;
            resolved = joinPath(resolved, match);
        }
        if (!isRegularFile(resolved)) return nullptr;
        return std::fopen(resolved.c_str(), "r");
    }
    return std::fopen(path, "r");
}

void* allocateBulkMemory(std::size_t size) {
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    // Small pages on purpose: a large page must be a free run of 2 MiB,
    // which a busy machine (or a virtual one, which hands the guest fresh
    // memory lazily) often zeroes from scratch, at a cost that varied from
    // run to run by a factor of ten. Small pages come from what was just
    // freed, the unpacked tar among it.
#ifdef MADV_POPULATE_WRITE
    // A region is used from end to end soon after: faulted in by one call it
    // costs less than a fault at each first touch. An older kernel refuses it.
    madvise(memory, size, MADV_POPULATE_WRITE);
#endif
    return memory;
}

// --- Directory search ------------------------------------------------------

namespace {

bool readAttributes(const std::string& path, std::uint32_t* attributes) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) return false;
    std::uint32_t value = 0;
    // lstat: a symbolic link is a plain entry, never a directory to descend.
    if (S_ISDIR(info.st_mode)) value |= kAttributeDirectory;
    if ((info.st_mode & S_IWUSR) == 0) value |= kAttributeReadOnly;
    *attributes = value;
    return true;
}

}  // namespace

bool DirectorySearch::findFirst(const char* pattern, FindRecord& record) {
    close();
    std::string text = pattern;
    std::vector<FindRecord> found;
    const std::size_t length = text.size();
    if (length >= 2 && text[length - 1] == '*' && isPathSeparator(text[length - 2])) {
        std::string directory = text.substr(0, length - 2);
        if (directory.empty()) directory = "/";
        DIR* dir = opendir(directory.c_str());
        if (dir == nullptr) return false;
        std::vector<std::string> names;
        while (const dirent* entry = readdir(dir)) {
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
                names.emplace_back(entry->d_name);
            }
        }
        closedir(dir);
        // Windows yields "." and ".." ahead of the real entries.
        std::sort(names.begin(), names.end());
        FindRecord dot;
        readAttributes(directory, &dot.attributes);
        dot.name = ".";
        found.push_back(dot);
        dot.name = "..";
        found.push_back(dot);
        for (const std::string& name : names) {
            FindRecord entry;
            entry.name = name;
            if (!readAttributes(directory + "/" + name, &entry.attributes)) continue;
            found.push_back(entry);
        }
    } else {
        while (text.size() > 1 && text.back() == '/') text.pop_back();
        FindRecord entry;
        if (!readAttributes(text, &entry.attributes)) return false;
        const std::size_t slash = text.find_last_of('/');
        entry.name = slash == std::string::npos ? text : text.substr(slash + 1);
        found.push_back(entry);
    }
    entries_ = std::move(found);
    open_ = true;
    next_ = 1;
    record = entries_[0];
    return true;
}

void makeWritable(const char* path) {
    struct stat info;
    if (lstat(path, &info) != 0 || S_ISLNK(info.st_mode)) return;
    chmod(path, info.st_mode | S_IWUSR);
}

namespace {

// On Windows a directory's read-only flag does not protect its entries; on
// POSIX an entry can't go while its directory lacks write permission. Grant
// it and try once more.
bool retryInWritableParent(const char* path, int (*remover)(const char*)) {
    if (errno != EACCES && errno != EPERM) return false;
    std::string parent = path;
    const std::size_t slash = parent.find_last_of('/');
    if (slash == std::string::npos) parent = ".";
    else parent.erase(slash == 0 ? 1 : slash);
    struct stat info;
    if (lstat(parent.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return false;
    if (chmod(parent.c_str(), info.st_mode | S_IWUSR | S_IXUSR) != 0) return false;
    return remover(path) == 0;
}

}  // namespace

bool deleteFile(const char* path) {
    struct stat info;
    if (lstat(path, &info) != 0 || S_ISDIR(info.st_mode)) return false;
    // DeleteFileA refuses a read-only file; unlink would not.
    if (!S_ISLNK(info.st_mode) && (info.st_mode & S_IWUSR) == 0) return false;
    if (unlink(path) == 0) return true;
    return retryInWritableParent(path, unlink);
}

bool removeDirectory(const char* path) {
    struct stat info;
    if (lstat(path, &info) != 0 || !S_ISDIR(info.st_mode)) return false;
    if (rmdir(path) == 0) return true;
    return retryInWritableParent(path, rmdir);
}

// --- The temporary folder ---------------------------------------------------

std::uint32_t randomNumber() {
    std::uint32_t value = 0;
    if (getrandom(&value, sizeof value, GRND_NONBLOCK) == static_cast<ssize_t>(sizeof value)) return value;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return fallbackRandomNumber(static_cast<std::uint64_t>(now.tv_sec) * 1000000000u + static_cast<std::uint64_t>(now.tv_nsec),
                                static_cast<std::uint64_t>(getpid()));
}

DirectoryCreation createDirectory(const char* path) {
    // Owner only: the unpacked job is nobody else's business in a shared TMP.
    if (mkdir(path, 0700) == 0) return DirectoryCreation::kCreated;
    return errno == EEXIST ? DirectoryCreation::kExists : DirectoryCreation::kFailed;
}

// --- Processes ---------------------------------------------------------------

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

}  // namespace

bool startProcess(const char* commandLine, ProcessHandle* process, ProcessStreams streams) {
    const std::vector<std::string> arguments = splitCommandLine(commandLine);
    if (arguments.empty() || arguments[0].empty()) return false;
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const std::vector<std::string> candidates = programCandidates(arguments[0]);

    CapturePipes capture;
    if (streams == ProcessStreams::kCaptured && !capture.open()) return false;
    const int childStreams[3] = {capture.input, capture.output, capture.output};
    // A failed exec is reported through a pipe that a successful one closes,
    // as CreateProcessA reports a program that can't start.
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) {
        capture.closeChildEnds();
        if (capture.reader >= 0) close(capture.reader);
        return false;
    }
    // No interruption between the start and the listing: the handler must
    // know every process it has to stop.
    sigset_t interruptions;
    sigset_t callerMask;
    sigemptyset(&interruptions);
    for (const int signal : kInterruptions) sigaddset(&interruptions, signal);
    sigprocmask(SIG_BLOCK, &interruptions, &callerMask);
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0) {
        const int failure = becomeProgram(parent, candidates, argv.data(), callerMask, childStreams);
        (void)!write(report[1], &failure, sizeof failure);
        _exit(127);
    }
    if (pid > 0) {
        setpgid(pid, pid);  // also here: the handler may stop the group before the child has made it
        listChild(pid);
    }
    sigprocmask(SIG_SETMASK, &callerMask, nullptr);
    close(report[1]);
    capture.closeChildEnds();
    int failure = 0;
    ssize_t got;
    do {
        got = read(report[0], &failure, sizeof failure);
    } while (got < 0 && errno == EINTR);
    close(report[0]);
    if (pid < 0) {
        if (capture.reader >= 0) close(capture.reader);
        return false;
    }
    *process = ProcessHandle();
    process->id = pid;
    process->outputPipe = capture.reader;
    if (got > 0) {
        waitForProcess(process);
        *process = ProcessHandle();
        return false;
    }
    return true;
}

namespace {

// Reads a captured output to its end: the writer's exit, or its kill by the
// interruption handler, closes the pipe.
void drainOutput(ProcessHandle* process) {
    if (process->outputPipe < 0) return;
    const int pipe = static_cast<int>(process->outputPipe);
    char block[16384];
    for (;;) {
        const ssize_t got = read(pipe, block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        const std::size_t room = kCapturedOutputLimit - process->output.size();
        process->output.append(block, std::min(room, static_cast<std::size_t>(got)));
    }
    close(pipe);
    process->outputPipe = -1;
}

}  // namespace

void waitForProcess(ProcessHandle* process) {
    drainOutput(process);
    if (process->id <= 0) return;
    int status = 0;
    pid_t result;
    do {
        result = waitpid(static_cast<pid_t>(process->id), &status, 0);
    } while (result < 0 && errno == EINTR);
    if (result == static_cast<pid_t>(process->id)) {
        unlistChild(static_cast<pid_t>(process->id));
        // The pid is reaped here, so its code is kept in the handle.
        process->ended = true;
        process->exitCode = static_cast<std::uint32_t>(
            WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    }
}

bool processExitCode(ProcessHandle* process, std::uint32_t* code) {
    if (!process->ended) return false;
    *code = process->exitCode;
    return true;
}

void closeProcess(ProcessHandle* process) {
    if (process->outputPipe >= 0) close(static_cast<int>(process->outputPipe));
    *process = ProcessHandle();
}

// --- Interruption ------------------------------------------------------------

namespace {

volatile sig_atomic_t recordedSignal = 0;
void (*cleanUpAction)(void*) = nullptr;
void* cleanUpContext = nullptr;

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

void handleInterruptions(void (*cleanUp)(void*), void* context) {
    cleanUpAction = cleanUp;
    cleanUpContext = context;
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

void stopIfInterrupted() {
    const int signal = recordedSignal;
    if (signal == 0) return;
    if (cleanUpAction != nullptr) cleanUpAction(cleanUpContext);
    std::fflush(stdout);
    endBySignal(signal);
}

}  // namespace platform
