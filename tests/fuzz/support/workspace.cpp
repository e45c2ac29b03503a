#include "support/workspace.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <system_error>

namespace fuzzing {

namespace fs = std::filesystem;

namespace {

std::string makeWorkspace() {
    std::error_code error;
    fs::path parent = fs::temp_directory_path(error);
    if (error) parent = ".";
    std::random_device seed;
    std::mt19937_64 random(seed());
    for (int attempt = 0; attempt < 100; ++attempt) {
        const fs::path candidate = parent / ("odb2vrn-fuzz-" + std::to_string(random() % 100000000000ULL));
        if (fs::create_directory(candidate, error)) return candidate.string();
    }
    std::fprintf(stderr, "fuzz harness: no scratch directory under %s\n", parent.string().c_str());
    std::abort();
}

void removeWorkspace() {
    std::error_code error;
    // Read-only entries would stop remove_all; the targets make none.
    fs::remove_all(workspace(), error);
}

}  // namespace

const std::string& workspace() {
    static const std::string path = makeWorkspace();
    static const bool cleanupRegistered = std::atexit(removeWorkspace) == 0;
    (void)cleanupRegistered;
    return path;
}

void writeFile(const std::string& path, const void* data, std::size_t size) {
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        std::fprintf(stderr, "fuzz harness: can't write %s\n", path.c_str());
        std::abort();
    }
    if (size > 0) std::fwrite(data, 1, size, file);
    std::fclose(file);
}

void writeFile(const std::string& path, const std::string& text) { writeFile(path, text.data(), text.size()); }

std::string readFile(const std::string& path) {
    std::string contents;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return contents;
    char chunk[65536];
    std::size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) contents.append(chunk, got);
    std::fclose(file);
    return contents;
}

void removeFile(const std::string& path) {
    std::error_code error;
    fs::remove(path, error);
}

void silenceStandardOutput() {
    std::fflush(stdout);
    // The targets run where libFuzzer runs: on POSIX systems.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
}

void setStandardInput(const std::string& text) {
    const std::string path = workspace() + "/stdin.txt";
    writeFile(path, text);
    if (std::freopen(path.c_str(), "r", stdin) == nullptr) {
        std::fprintf(stderr, "fuzz harness: can't reopen standard input\n");
        std::abort();
    }
}

}  // namespace fuzzing
