// The parts of DirectorySearch that both twins share: findFirst reads a
// whole listing at once (in platform_posix.cpp / platform_win32.cpp), and
// the rest only walks what it read.
#include "platform/platform.h"

namespace platform {

DirectorySearch::~DirectorySearch() { close(); }

bool DirectorySearch::findNext(FindRecord& record) {
    if (!open_ || next_ >= entries_.size()) return false;
    record = entries_[next_++];
    return true;
}

void DirectorySearch::close() {
    entries_.clear();
    next_ = 0;
    open_ = false;
}

}  // namespace platform
