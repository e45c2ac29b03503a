#include "unpack/compressed_files.h"

CompressedFile CompressedFileList::takeCompressedFile() {
    Node* tail = nodeAt(itemCount() - 1);
    if (tail == nullptr) abnormalEnd();
    CompressedFile record = tail->record;
    removeAt(itemCount() - 1);
    return record;
}
