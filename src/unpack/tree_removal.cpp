// Removal of the temporary tree at the end of a run. It stops at the first
// thing that can't be removed; the enumeration never reports a symbolic link
// as a directory, so nothing outside the tree is ever entered.
#include "platform/platform.h"
#include "unpack/archive_unpacker.h"

std::int32_t ArchiveUnpacker::removeTemporaryTree() {
    if (!treeInUse || !treeCreated) return 1;
    if (removeTree(tempPath) != 0) return 1;
    if (!platform::removeDirectory(tempPath.text())) return 1;
    treeCreated = false;
    treeInUse = false;
    return 0;
}

std::int32_t ArchiveUnpacker::removeTree(TextString path) {
    platform::DirectorySearch search;
    platform::FindRecord record;
    if (!search.findFirst((path + platform::kPathSeparatorText + "*").text(), record)) return 1;
    do {
        if (record.name == "." || record.name == "..") continue;
        const TextString entry = path + platform::kPathSeparatorText + record.name.c_str();
        if ((record.attributes & platform::kAttributeDirectory) != 0) {
            if (removeTree(entry) != 0) return 2;
            if (!platform::removeDirectory(entry.text())) return 2;
        } else {
            if ((record.attributes & platform::kAttributeReadOnly) != 0) platform::makeWritable(entry.text());
            if (!platform::deleteFile(entry.text())) return 2;
        }
    } while (search.findNext(record));
    return 0;
}
