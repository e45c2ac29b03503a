// What a directory tree holds, entry by entry, so that a run can be shown to
// have changed nothing but what it should. Links are recorded, not followed.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace e2e {

struct EntryState {
    char kind = '?';      // 'f' file, 'd' directory, 'l' symbolic link, '?' other
    unsigned mode = 0;    // permission bits
    std::string content;  // a file's bytes, a link's target
    bool operator==(const EntryState& other) const {
        return kind == other.kind && mode == other.mode && content == other.content;
    }
};

// Paths relative to the root, with '/' between their parts.
using TreeSnapshot = std::map<std::string, EntryState>;

TreeSnapshot snapshotTree(const std::string& root);

// Every path added, removed or changed between the two, in order.
std::vector<std::string> changedPaths(const TreeSnapshot& before, const TreeSnapshot& after);

}  // namespace e2e
