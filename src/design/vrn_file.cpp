#include "design/vrn_file.h"

bool VrnFile::open(const char* path) {
    abandon();
    stream_ = std::fopen(path, "w");
    if (stream_ == nullptr) return false;
    path_ = path;
    failed_ = false;
    return true;
}

bool VrnFile::finish() {
    if (stream_ == nullptr) return false;
    // The stream's own error flag catches a failed write that nobody saw; a
    // full disk often shows only at the last flush or at the close.
    const bool written = !failed_ && std::fflush(stream_) == 0 && std::ferror(stream_) == 0;
    const bool closed = std::fclose(stream_) == 0;
    stream_ = nullptr;
    if (!(written && closed)) std::remove(path_.c_str());
    return written && closed;
}

void VrnFile::abandon() {
    if (stream_ == nullptr) return;
    std::fclose(stream_);
    stream_ = nullptr;
    std::remove(path_.c_str());
}
