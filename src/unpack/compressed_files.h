// CompressedFile: a ".Z" or ".z" member of a job, found by the tree walk
// and expanded in place. The queue takes new records at its head and gives
// them from its tail, so files are expanded in the order they were found.
#pragma once

#include "containers/item_list.h"
#include "containers/text_string.h"

struct CompressedFile {
    TextString directory;  // the full directory path, no trailing separator
    TextString fileName;   // the name within it, with its extension
};

class CompressedFileList {
public:
    std::int32_t itemCount() const { return files_.itemCount(); }
    // A copy of record goes to the head; every index moves up by one.
    void addCompressedFile(const CompressedFile& record) { files_.addHead(record); }
    // A copy of the record at the tail, which leaves the list.
    // REQUIRES: itemCount() > 0.
    CompressedFile takeCompressedFile();

private:
    Arena arena_;
    RecordList<CompressedFile> files_{arena_};
};
