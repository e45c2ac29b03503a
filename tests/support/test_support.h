// Helpers shared by the tests: a scratch directory per test, whole-file
// reads, and the paths of the test data, the shared samples and the build.
#pragma once

#include <string>

namespace testsupport {

// tests/ in the source tree.
std::string testDataDir();
// ../shared/samples beside the checkout; may not exist.
std::string samplesDir();
// The folder that holds Odb2vrn_64 and qx7za.exe.
std::string binDir();

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& contents);
bool pathExists(const std::string& path);

// The bytes that a text-mode write of text leaves in a file: CR LF for each
// line end on Windows, the text itself elsewhere.
std::string asWrittenText(const std::string& text);
// What a text-mode read hands over for a CR LF in the file: the CR stays on
// POSIX and goes on Windows.
extern const char kCrLfAsRead[];

// A fresh empty directory under the system's temporary folder, removed
// (read-only entries too) when the object goes.
class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// Removes a tree, making read-only directories writable first.
void removeAll(const std::string& path);

}  // namespace testsupport
