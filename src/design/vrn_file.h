// VrnFile: the output file while it is written. A VRN file that exists is
// complete: until finish() has seen every write, the last flush and the close
// succeed, the file is unfinished, and a failure, an interruption or the
// file's end without finish() removes it.
#pragma once

#include <cstdio>
#include <string>

class VrnFile {
public:
    VrnFile() = default;
    VrnFile(const VrnFile&) = delete;
    VrnFile& operator=(const VrnFile&) = delete;
    // An unfinished file that nobody finished or kept is abandoned.
    ~VrnFile() { abandon(); }

    // fopen(path, "w"): false, with nothing made, when it can't be opened.
    bool open(const char* path);
    std::FILE* stream() const { return stream_; }
    // Records a write that did not go through, so that finish() fails.
    void writeFailed() { failed_ = true; }
    // Flushes and closes. True when the file is complete; otherwise it is
    // removed.
    bool finish();
    // Closes the file and removes it.
    void abandon();
    // Lets the file go as it stands, open and unfinished: what an allocation
    // failure in the writer leaves.
    void keepUnfinished() { stream_ = nullptr; }

private:
    std::FILE* stream_ = nullptr;
    std::string path_;
    bool failed_ = false;
};
