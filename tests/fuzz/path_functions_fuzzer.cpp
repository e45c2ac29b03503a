// platform::fullPath, checkOutputPath, extractFileName and stripExtension.
// Each result area is a heap block of exactly its contract's size, so that a
// write past it is caught; the results must lie within what they come from.
// Input: the first byte sets fullPath's limit (a few bytes, or around 270),
// the rest is the path, up to its first zero byte. Nothing is written.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "frame/run_options.h"
#include "platform/platform.h"

namespace {

void check(bool ok, const char* what, const std::string& path, const std::string& result) {
    if (ok) return;
    std::fprintf(stderr, "path check: %s\n  path:   [%s]\n  result: [%s]\n", what, path.c_str(), result.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const int limit = data[0] < 128 ? 1 + data[0] % 8 : 200 + data[0] % 100;
    const std::string path = std::string(reinterpret_cast<const char*>(data + 1), size - 1).c_str();

    std::unique_ptr<char[]> area(new char[static_cast<std::size_t>(limit)]);
    if (platform::fullPath(area.get(), path.c_str(), limit)) {
        const std::string result = area.get();
        check(static_cast<int>(result.size()) < limit && result[0] == '/', "fullPath: not absolute", path, result);
    }
    char fullArea[kPathArea];
    const std::string full = platform::fullPath(fullArea, path.c_str(), kPathArea) ? fullArea : "";

    std::unique_ptr<char[]> directory(new char[kPathArea]());
    const int code = checkOutputPath(path.c_str(), directory.get());
    check(code >= 0 && code <= 4 && (code == 1) == full.empty(), "checkOutputPath: code", path, std::to_string(code));
    if (code != 1 && code != 2) {
        const std::string dir = directory.get();
        check(!dir.empty() && full.compare(0, dir.size(), dir) == 0, "checkOutputPath: directory not in the full path",
              path, dir);
    }

    std::unique_ptr<char[]> name(new char[kPathArea]);
    if (extractFileName(path.c_str(), name.get()) == 0) {
        const std::string found = name.get();
        check(found.find_first_of("/\\") == std::string::npos && full.size() > found.size() &&
                  full.compare(full.size() - found.size(), found.size(), found) == 0,
              "extractFileName: not the last part of the full path", path, found);
    }

    const std::string stripped = stripExtension(TextString(path.c_str())).text();
    check(path.compare(0, stripped.size(), stripped) == 0 &&
              (stripped.size() == path.size() || path[stripped.size()] == '.'),
          "stripExtension: not the path up to a dot", path, stripped);
    return 0;
}
