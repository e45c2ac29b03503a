// The only door to the operating system. Every OS service the converter uses
// is declared here, with one result contract that every system meets. Two
// twin pairs implement it, each file in the order of this header:
// platform_posix.cpp / platform_win32.cpp the paths, files and memory,
// process_posix.cpp / process_win32.cpp the processes and interruptions.
// command_line.cpp, directory_search.cpp and random_fallback.cpp serve both.
// Each comment names the Win32 / C runtime call the function stands for, so
// the logic reads the same on every system.
//
// Texts are plain zero-terminated byte strings; nothing here allocates memory
// that a caller must free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace platform {

// The separator every built path uses. Code that searches a path for a
// separator accepts both '\\' and '/' (isPathSeparator).
extern const char kPathSeparatorText[];
inline bool isPathSeparator(char c) { return c == '/' || c == '\\'; }

// GetCurrentDirectoryA: writes the current directory as an absolute,
// zero-terminated path into buffer (size bytes). A root comes back with its
// trailing separator ("/" or "C:\"), every other directory without one.
// Writes the empty text when it does not fit; nothing when size is not
// positive.
void currentDirectory(char* buffer, int size);

// getenv: the variable's value, or null.
inline const char* environmentValue(const char* name) { return std::getenv(name); }

// A text as the program writes it (a console message that quotes a path or a
// variable, the VRN file's design name), in the bytes this system's texts
// have: on POSIX the text itself. On Windows, whose A-functions carry UTF-8
// (the manifest's active code page), the text in the system's ANSI code
// page, as a build without that declaration wrote it; a text that isn't
// UTF-8, or that the code page can't hold whole, stays as it is: nothing is
// ever written as '?'.
std::string asWritten(const char* text);

// _fullpath(buffer, path, limit): the absolute form of path, resolved by text
// ("." and ".." folded, repeated separators collapsed, a trailing separator
// kept; no link resolution, no existence test). An empty path gives the
// current directory. Returns false, with buffer undefined, when the result
// and its terminator do not fit limit bytes, or when the system refuses the
// path: Windows's ANSI calls stop at MAX_PATH, below the limit of 270, even
// for a long path that folds to a short result.
bool fullPath(char* buffer, const char* path, int limit);

// _stat64i32: returns true when the path exists. A path that ends in a
// separator counts as not existing unless it is a root ("/", "\", "C:\").
// isDirectory (may be null) receives bit 0x4000 of st_mode; it is untouched
// when the result is false.
bool statPath(const char* path, bool* isDirectory);

// _splitpath's extension: the text from the last dot of the name on, or the
// empty text. Separators end the name.
std::string pathExtension(const char* name);

// Opening a file of an unpacked job for reading (text mode). When the exact
// path does not exist, each path component is matched ignoring ASCII case,
// as a Windows file system does; an exact match always wins, and among
// several case variants the first in byte order is taken. A directory counts
// as missing. Returns null when no file is found or it can't be opened.
std::FILE* openJobFile(const char* path);

// The arena's regions: size bytes, zeroed, faulted in at once where the
// system allows it (a board's model touches hundreds of megabytes, and a
// fault per page costs more than filling it). Null on failure, and for size
// 0. releaseBulkMemory gives a region back whole.
void* allocateBulkMemory(std::size_t size);
void releaseBulkMemory(void* region, std::size_t size);

// --- The temporary folder -------------------------------------------------

// A number from the system's random source (getrandom, rand_s), so that runs
// started together draw different names; where the source fails, the
// high-resolution clock mixed with the process id (random_fallback.h).
std::uint32_t randomNumber();

enum class DirectoryCreation { kCreated, kExists, kFailed };

// CreateDirectoryA: makes the directory, and fails with kExists when the
// name is taken (by anything, a file too), so that a run claims its folder
// before anything fills it; kFailed for every other failure.
DirectoryCreation createDirectory(const char* path);

// --- Directory search: FindFirstFileA / FindNextFileA / FindClose --------

constexpr std::uint32_t kAttributeReadOnly = 0x01;   // FILE_ATTRIBUTE_READONLY
constexpr std::uint32_t kAttributeDirectory = 0x10;  // FILE_ATTRIBUTE_DIRECTORY

struct FindRecord {
    std::uint32_t attributes = 0;
    std::string name;
};

// One enumeration, read whole by findFirst, in one of two forms. Given
// "dir<sep>*" it yields the directory's "." and ".." (a drive root has
// none), then its other entries in byte order; given a bare path it yields
// that path's own entry, and nothing when the path ends in a separator.
// A symbolic link is never a directory, so no walk recurses through one.
class DirectorySearch {
public:
    DirectorySearch() = default;
    DirectorySearch(const DirectorySearch&) = delete;
    DirectorySearch& operator=(const DirectorySearch&) = delete;
    ~DirectorySearch();

    // FindFirstFileA: false (an invalid handle) when there is nothing to
    // enumerate; record is then untouched.
    bool findFirst(const char* pattern, FindRecord& record);
    // FindNextFileA: false at the end, with record untouched.
    bool findNext(FindRecord& record);
    // FindClose.
    void close();

private:
    std::vector<FindRecord> entries_;
    std::size_t next_ = 0;
    bool open_ = false;
};

// _chmod(path, 0x80): give the owner write permission.
void makeWritable(const char* path);

// DeleteFileA: true when the file is gone. False for a directory, a
// read-only file, or one the system won't delete. A link goes as a file,
// whatever it points at.
bool deleteFile(const char* path);

// RemoveDirectoryA: true when the empty directory is gone. False for a
// directory with entries, a file, a link (even to a directory), or one the
// system won't remove.
bool removeDirectory(const char* path);

// --- Processes: CreateProcessA / WaitForSingleObject / GetExitCodeProcess /
// CloseHandle -----------------------------------------------------------------

// What a started program's standard streams are.
enum class ProcessStreams {
    kHidden,    // away from ours, as a hidden console
    kCaptured,  // output and error into Process::output; input one empty line
};
// Enough for every message of a failed unpack; more is read and dropped.
constexpr std::size_t kCapturedOutputLimit = 1 << 20;

// Splits a command line into arguments by the rules of the Windows C runtime:
// the program name runs to the next blank or, quoted, to the next quote;
// after it double quotes group, 2n backslashes before a quote give n
// backslashes, 2n+1 give n and a literal quote, and "" inside a quoted part
// gives a literal quote.
std::vector<std::string> splitCommandLine(const char* commandLine);

// One started program. What the system needs to know of it (a pid and a
// pipe, or the process, thread and pipe handles) is each twin's own State.
// Destroying a Process frees that memory but gives nothing back to the
// system: a probe that is started and dropped keeps its handles until the
// program ends, and on POSIX may stay a zombie; only close() releases them.
class Process {
public:
    Process();
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // CreateProcessA with CREATE_NEW_CONSOLE and SW_HIDE: starts commandLine
    // without waiting. A bare program name is searched on PATH. Returns false,
    // holding nothing, when the line is empty or the program can't be
    // started. A captured program's input holds one empty line, so that a
    // question (7-Zip's password prompt) gets an empty answer instead of
    // waiting for a typist who isn't there. Each Process starts once.
    bool start(const char* commandLine, ProcessStreams streams = ProcessStreams::kHidden);

    // WaitForSingleObject(process, INFINITE), reading a captured output to
    // its end first, so that a talkative program never blocks on a full
    // pipe. Does nothing for a Process that holds no program.
    void wait();

    // GetExitCodeProcess: false until wait has seen the program end (so for
    // one still running, never started or closed too); then true, with the
    // code. A program ended by a signal gives 128 + the signal, as a shell
    // shows it; one ended through the job object, the job's code.
    bool exitCode(std::uint32_t* code) const;

    // CloseHandle on the process and its thread, and on an output pipe that
    // was not read to its end. The program itself is not stopped; the
    // Process holds nothing afterwards, and output() stays.
    void close();

    // What a captured program wrote, up to kCapturedOutputLimit bytes: all
    // of it once wait returns.
    const std::string& output() const { return output_; }

private:
    struct State;
    std::string output_;
    std::unique_ptr<State> state_;
};

// --- Interruption: SIGINT, SIGTERM, SIGHUP; Ctrl-C, Ctrl-Break, console close
//
// The handler only records the first interruption and stops every process
// started here (each has a process group of its own, or sits in the run's
// job object, and dies with the program even when it is killed hard). The
// run sees it as a result: the stages that can stop ask interrupted() and
// hand it up, and the run ends by endByInterruption() in one place. A second
// interruption ends the program at once.

// Installs the handlers. An interruption that the program was started to
// ignore (nohup) stays ignored.
void handleInterruptions();

// True once an interruption was recorded.
bool interrupted();

// Flushes the standard output and ends the program as the recorded
// interruption would have: a shell sees 128 + the signal; on Windows the
// code of a program stopped by Ctrl-C.
// REQUIRES: interrupted().
[[noreturn]] void endByInterruption();

}  // namespace platform
