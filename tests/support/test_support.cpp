#include "support/test_support.h"

#include <dirent.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

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
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

void removeAll(const std::string& path) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) return;
    if (S_ISDIR(info.st_mode)) {
        chmod(path.c_str(), info.st_mode | S_IRWXU);
        if (DIR* dir = opendir(path.c_str())) {
            while (dirent* entry = readdir(dir)) {
                const std::string name = entry->d_name;
                if (name != "." && name != "..") removeAll(path + "/" + name);
            }
            closedir(dir);
        }
        rmdir(path.c_str());
    } else {
        unlink(path.c_str());
    }
}

ScratchDir::ScratchDir() {
    const char* base = getenv("TEST_TMPDIR");
    std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/odb2vrn_test_XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

ScratchDir::~ScratchDir() { removeAll(path_); }

}  // namespace testsupport
