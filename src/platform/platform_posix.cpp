// POSIX twin of platform_win32.cpp. Where Linux behaves differently from the
// Windows calls the logic was written against, the comment says how it is
// made to behave like Windows.
#include "platform/platform.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

extern char** environ;

namespace platform {

const char kPathSeparator = '/';
const char kPathSeparatorText[] = "/";

bool isPathSeparator(char c) { return c == '/' || c == '\\'; }

void currentDirectory(char* buffer, int size) {
    if (size <= 0) return;
    if (getcwd(buffer, static_cast<size_t>(size)) == nullptr) buffer[0] = '\0';
}

const char* environmentValue(const char* name) { return std::getenv(name); }

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
    // Large pages need 2 MiB alignment: map more and trim both ends.
    constexpr std::size_t kLargePage = std::size_t{2} << 20;
    const std::size_t mapped = size + kLargePage;
    void* memory = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    char* start = static_cast<char*>(memory);
    char* aligned = reinterpret_cast<char*>((reinterpret_cast<std::uintptr_t>(start) + kLargePage - 1) &
                                            ~std::uintptr_t{kLargePage - 1});
    if (aligned > start) munmap(start, static_cast<std::size_t>(aligned - start));
    char* tail = aligned + size;
    char* mappedEnd = start + mapped;
    if (mappedEnd > tail) munmap(tail, static_cast<std::size_t>(mappedEnd - tail));
#ifdef MADV_HUGEPAGE
    madvise(aligned, size, MADV_HUGEPAGE);  // a hint: refused, it costs nothing
#endif
    return aligned;
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

// --- Processes ---------------------------------------------------------------

bool startProcess(const char* commandLine, ProcessHandle* process) {
    const std::vector<std::string> arguments = splitCommandLine(commandLine);
    if (arguments.empty() || arguments[0].empty()) return false;
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    // The hidden console: the tool's streams go nowhere.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    // posix_spawnp reports a failed exec, as CreateProcessA does.
    const int status = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) return false;
    *process = ProcessHandle();
    process->id = pid;
    return true;
}

void waitForProcess(ProcessHandle* process) {
    if (process->id <= 0) return;
    int status = 0;
    pid_t result;
    do {
        result = waitpid(static_cast<pid_t>(process->id), &status, 0);
    } while (result < 0 && errno == EINTR);
    if (result == static_cast<pid_t>(process->id)) {
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

void closeProcess(ProcessHandle* process) { *process = ProcessHandle(); }

}  // namespace platform
