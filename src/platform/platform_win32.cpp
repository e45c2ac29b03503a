// Windows twin of platform_posix.cpp: the Win32 and C runtime calls for
// paths, files and memory that the logic was written against. Where the two
// files differ in more than the call, the comment says how both are kept to
// one behaviour.
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
#include <climits>
#include <cstring>

#include "platform/random_fallback.h"

namespace platform {

const char kPathSeparatorText[] = "\\";

void currentDirectory(char* buffer, int size) {
    if (size <= 0) return;
    // The result is the length without the terminator, or the size needed
    // (terminator included) when the buffer is too small.
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(size), buffer);
    if (length == 0 || length >= static_cast<DWORD>(size)) buffer[0] = '\0';
}

namespace {

// The system's ANSI code page. GetACP answers UTF-8 once the manifest
// declares it; the system locale keeps the code page that the users' other
// programs write. (GetLocaleInfoEx with the system default's name fails
// under Wine.) UTF-8 when it can't be read, which leaves texts as they are.
UINT systemCodePage() {
    DWORD codePage = 0;
    const int read = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                                    reinterpret_cast<LPWSTR>(&codePage), sizeof codePage / sizeof(WCHAR));
    return read == 0 || codePage == 0 ? CP_UTF8 : codePage;
}

}  // namespace

std::string asWritten(const char* text) {
    // A Windows older than 1903 ignores the declaration, and its texts are
    // in the ANSI code page already.
    if (GetACP() != CP_UTF8) return text;
    const UINT codePage = systemCodePage();
    const std::size_t length = std::strlen(text);
    if (codePage == CP_UTF8 || length == 0 || length > static_cast<std::size_t>(INT_MAX)) return text;
    const int size = static_cast<int>(length);
    const int wideLength = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, size, nullptr, 0);
    if (wideLength == 0) return text;  // not UTF-8
    std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, size, &wide[0], wideLength);
    // No best fit: a character the code page lacks must not become a look-
    // alike ('u' for 'ü' on 932) any more than '?'. The code page's default
    // character marks it, and the UTF-8 text is kept whole. A code page that
    // refuses these flags fails, and keeps it too.
    const int bytes = WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, wide.data(), wideLength, nullptr, 0,
                                          nullptr, nullptr);
    if (bytes <= 0) return text;
    std::string result(static_cast<std::size_t>(bytes), '\0');
    BOOL usedDefault = FALSE;
    const int written = WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, wide.data(), wideLength, &result[0],
                                            bytes, nullptr, &usedDefault);
    return written == bytes && !usedDefault ? result : std::string(text);
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

void releaseBulkMemory(void* region, std::size_t) { VirtualFree(region, 0, MEM_RELEASE); }

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

bool removeDirectory(const char* path) {
    // RemoveDirectoryA would take a link to a directory, which rmdir refuses
    // on POSIX; only deleteFile removes a link.
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return false;
    return RemoveDirectoryA(path) != 0;
}

}  // namespace platform
