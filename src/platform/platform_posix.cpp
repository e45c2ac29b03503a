// POSIX twin of platform_win32.cpp: paths, files and memory. Where Linux
// behaves differently from the Windows calls the logic was written against,
// the comment says how it is made to behave like Windows.
#include "platform/platform.h"

#include <dirent.h>
#include <errno.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/random_fallback.h"

namespace platform {

const char kPathSeparatorText[] = "/";

void currentDirectory(char* buffer, int size) {
    if (size <= 0) return;
    if (getcwd(buffer, static_cast<size_t>(size)) == nullptr) buffer[0] = '\0';
}

// Paths are bytes here, written as they came.
std::string asWritten(const char* text) { return text; }

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
    if (length > 1 && isPathSeparator(path[length - 1])) return false;
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
    // costs less than a fault at each first touch (bench_stages at 100k
    // components: the read 0.50 against 0.62 s with blocks from operator
    // new, medians of 11). An older kernel refuses it.
    madvise(memory, size, MADV_POPULATE_WRITE);
#endif
    return memory;
}

void releaseBulkMemory(void* region, std::size_t size) { munmap(region, size); }

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
    const std::string text = pattern;
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
        // FindFirstFileA finds nothing for "dir\"; lstat would take it.
        if (length == 0 || isPathSeparator(text.back())) return false;
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

}  // namespace platform
