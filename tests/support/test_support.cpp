#include "support/test_support.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

namespace testsupport {

std::string testDataDir() { return ODB2VRN_TEST_DATA; }
std::string samplesDir() { return ODB2VRN_SAMPLES; }
std::string binDir() { return ODB2VRN_BIN_DIR; }

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& contents) {
    std::ofstream out(path, std::ios::binary);
    out << contents;
}

bool pathExists(const std::string& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

#ifdef _WIN32
const char kCrLfAsRead[] = "\n";

std::string asWrittenText(const std::string& text) {
    std::string bytes;
    for (const char c : text) bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return bytes;
}
#else
const char kCrLfAsRead[] = "\r\n";

std::string asWrittenText(const std::string& text) { return text; }
#endif

void removeAll(const std::string& path) {
    std::error_code error;
#ifdef _WIN32
    // A read-only file can't be deleted on Windows until it is writable.
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, error);
#endif
    // Entries of read-only directories can't go until the directory is
    // writable again.
    if (fs::is_directory(fs::symlink_status(path, error))) {
        fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, error);
        for (const auto& entry : fs::directory_iterator(path, error)) removeAll(entry.path().string());
    }
    fs::remove(path, error);
}

ScratchDir::ScratchDir() {
    static std::atomic<unsigned> serial{0};
    std::mt19937 random(static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count()));
    const fs::path base = fs::temp_directory_path();
    for (;;) {
        fs::path candidate = base / ("odb2vrn_test_" + std::to_string(random()) + "_" + std::to_string(serial++));
        std::error_code error;
        if (fs::create_directory(candidate, error)) {
            path_ = candidate.string();
            return;
        }
    }
}

ScratchDir::~ScratchDir() { removeAll(path_); }

}  // namespace testsupport
