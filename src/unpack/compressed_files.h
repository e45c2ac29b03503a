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

class CompressedFileList : public RecordList<CompressedFile> {
public:
    // A copy of record goes to the head; every index moves up by one.
    void addCompressedFile(CompressedFile record) { addHead(record); }
    // A copy of the record at the tail, which leaves the list.
    // REQUIRES: itemCount() > 0.
    CompressedFile takeCompressedFile();
};
