// Removal of the temporary tree at the end of a run. It stops at the first
// thing that can't be removed; the enumeration never reports a symbolic link
// as a directory, so nothing outside the tree is ever entered.
#include "platform/platform.h"
#include "unpack/archive_unpacker.h"
#include "unpack/directory_walk.h"

std::int32_t ArchiveUnpacker::removeTemporaryTree() {
    if (!treeInUse || !treeCreated) return 1;
    if (removeTree(tempPath) != 0) return 1;
    if (!platform::removeDirectory(tempPath.text())) return 1;
    treeCreated = false;
    treeInUse = false;
    return 0;
}

std::int32_t ArchiveUnpacker::removeTree(TextString path) {
    std::int32_t result = 0;
    const bool listed = forEachEntry(path, [&](const platform::FindRecord& record) {
        const TextString entry = childPath(path, record.name);
        if (isDirectoryEntry(record)) {
            if (removeTree(entry) == 0 && platform::removeDirectory(entry.text())) return true;
        } else {
            if ((record.attributes & platform::kAttributeReadOnly) != 0) platform::makeWritable(entry.text());
            if (platform::deleteFile(entry.text())) return true;
        }
        result = 2;
        return false;
    });
    return listed ? result : 1;
}
