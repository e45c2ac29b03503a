// The walks of the temporary tree (the peeling, the search for compressed
// members, the removal) share one way through a directory.
#pragma once

#include <string>

#include "containers/text_string.h"
#include "platform/platform.h"

inline TextString childPath(const TextString& directory, const std::string& name) {
    return directory + platform::kPathSeparatorText + name.c_str();
}

inline bool isDirectoryEntry(const platform::FindRecord& record) {
    return (record.attributes & platform::kAttributeDirectory) != 0;
}

// Calls visit(record) for every entry of directory but "." and "..", in the
// enumeration's order, until visit returns false. False when the directory
// can't be enumerated.
template <typename Visit>
bool forEachEntry(const TextString& directory, Visit visit) {
    platform::DirectorySearch search;
    platform::FindRecord record;
    if (!search.findFirst(childPath(directory, "*").text(), record)) return false;
    do {
        if (record.name == "." || record.name == "..") continue;
        if (!visit(record)) break;
    } while (search.findNext(record));
    return true;
}
