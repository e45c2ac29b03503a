// Fuzzes the path functions of the command line: platform::fullPath,
// checkOutputPath, extractFileName and stripExtension. Each result area is a
// heap block of exactly the size the contract names, so that a write past it
// is caught. Besides the codes, the results are checked for what they mean:
// a full path is absolute and folded, a directory is a prefix of the full
// path, a name holds no separator, an extension goes only as far as the
// last dot of the name.
//
// Input: the first byte sets the limit given to fullPath; the rest is the
// path, up to its first zero byte. Relative paths are taken from the
// current directory, and only queries are made: nothing is written.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "frame/run_options.h"
#include "platform/platform.h"

namespace {

void fail(const char* what, const std::string& path, const std::string& result) {
    std::fprintf(stderr, "path check: %s\n  path:   [%s]\n  result: [%s]\n", what, path.c_str(), result.c_str());
    std::abort();
}

bool isSeparator(char c) { return c == '/' || c == '\\'; }

void checkFullPath(const std::string& path, int limit) {
    std::unique_ptr<char[]> area(new char[static_cast<std::size_t>(limit)]);
    if (!platform::fullPath(area.get(), path.c_str(), limit)) return;
    const std::string full(area.get());
    if (static_cast<int>(full.size()) + 1 > limit) fail("fullPath overran its limit", path, full);
    if (full.empty() || full[0] != '/') fail("fullPath is not absolute", path, full);
    if (full.find("//") != std::string::npos) fail("fullPath kept a repeated separator", path, full);
    const std::string wrapped = full + (full.back() == '/' ? "" : "/");
    if (wrapped.find("/./") != std::string::npos || wrapped.find("/../") != std::string::npos) {
        fail("fullPath kept a . or .. part", path, full);
    }
    // Folded once, a full path is its own full path.
    std::unique_ptr<char[]> again(new char[static_cast<std::size_t>(limit)]);
    if (!platform::fullPath(again.get(), full.c_str(), limit) || full != again.get()) {
        fail("fullPath of a full path changes it", path, full);
    }
}

// The full path the two command-line functions start from, or "" when it
// doesn't fit their area.
std::string fullPathInArea(const std::string& path) {
    char area[kPathArea];
    return platform::fullPath(area, path.c_str(), kPathArea) ? std::string(area) : std::string();
}

void checkOutputPathResult(const std::string& path) {
    std::unique_ptr<char[]> directory(new char[kPathArea]);
    directory[0] = '\0';
    const int code = checkOutputPath(path.c_str(), directory.get());
    const std::string full = fullPathInArea(path);
    if (code < 0 || code > 4) fail("checkOutputPath gave a code outside 0..4", path, std::to_string(code));
    if ((code == 1) != full.empty()) fail("checkOutputPath's code 1 is not a path that doesn't fit", path, full);
    if (code == 0 || code == 3 || code == 4) {
        const std::string dir(directory.get());
        if (dir.empty() || full.compare(0, dir.size(), dir) != 0) {
            fail("checkOutputPath's directory is not a prefix of the full path", path, dir);
        }
        bool isDirectory = false;
        const bool exists = platform::statPath(dir.c_str(), &isDirectory);
        if ((code == 0) != (exists && isDirectory) || (code == 3) == exists) {
            fail("checkOutputPath's code does not match its directory", path, dir);
        }
    }
}

void checkFileName(const std::string& path) {
    std::unique_ptr<char[]> name(new char[kPathArea]);
    const int code = extractFileName(path.c_str(), name.get());
    const std::string full = fullPathInArea(path);
    if (code == 1) {
        if (!full.empty()) fail("extractFileName failed on a path that fits", path, full);
        return;
    }
    if (code != 0 && code != 2) fail("extractFileName gave a code outside 0..2", path, std::to_string(code));
    if (full.empty()) fail("extractFileName took a path that doesn't fit", path, "");
    const std::string found(name.get());
    if ((code == 2) != found.empty()) fail("extractFileName's code 2 is not an empty name", path, found);
    if (found.find_first_of("/\\") != std::string::npos) fail("extractFileName's name holds a separator", path, found);
    if (full.size() <= found.size() || full.compare(full.size() - found.size(), found.size(), found) != 0 ||
        !isSeparator(full[full.size() - found.size() - 1])) {
        fail("extractFileName's name is not the last part of the full path", path, found);
    }
}

void checkStrippedExtension(const std::string& name) {
    const std::string stripped = stripExtension(TextString(name.c_str())).text();
    if (name.compare(0, stripped.size(), stripped) != 0 || stripped.size() > name.size()) {
        fail("stripExtension is not a prefix of the name", name, stripped);
    }
    // The last of '.', '\\' and '/' (index 0 only when there is no other).
    std::size_t last = name.find_last_of("./\\");
    if (last == 0 || last == std::string::npos) {
        last = name.empty() || name[0] != '.' ? std::string::npos : 0;
    }
    const bool cut = last != std::string::npos && name[last] == '.';
    if (cut ? stripped.size() != last : stripped != name) fail("stripExtension cut the wrong part", name, stripped);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // Limits around the 270 of the command line, and the smallest ones.
    const int limit = data[0] < 128 ? 1 + data[0] % 8 : 200 + data[0] % 100;
    const std::string path(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::string text(path.c_str());  // up to the first zero byte

    checkFullPath(text, limit);
    checkOutputPathResult(text);
    checkFileName(text);
    checkStrippedExtension(text);
    return 0;
}
