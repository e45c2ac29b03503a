#include "e2e/tree_snapshot.h"

#include <algorithm>
#include <filesystem>

#include "support/test_support.h"

namespace fs = std::filesystem;

namespace e2e {

TreeSnapshot snapshotTree(const std::string& root) {
    TreeSnapshot snapshot;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator it(root, options, error), end; !error && it != end; it.increment(error)) {
        const fs::file_status status = it->symlink_status(error);
        EntryState state;
        state.mode = static_cast<unsigned>(status.permissions()) & 07777;
        if (fs::is_symlink(status)) {
            state.kind = 'l';
            state.content = fs::read_symlink(it->path(), error).string();
        } else if (fs::is_directory(status)) {
            state.kind = 'd';
        } else if (fs::is_regular_file(status)) {
            state.kind = 'f';
            state.content = testsupport::readFile(it->path().string());
        }
        // Lexical: a link must be named where it lies, not where it points.
        snapshot[it->path().lexically_relative(root).generic_string()] = state;
    }
    return snapshot;
}

std::vector<std::string> changedPaths(const TreeSnapshot& before, const TreeSnapshot& after) {
    std::vector<std::string> changed;
    for (const auto& [path, state] : after) {
        const auto old = before.find(path);
        if (old == before.end() || !(old->second == state)) changed.push_back(path);
    }
    for (const auto& entry : before) {
        if (after.count(entry.first) == 0) changed.push_back(entry.first);
    }
    std::sort(changed.begin(), changed.end());
    return changed;
}

}  // namespace e2e
