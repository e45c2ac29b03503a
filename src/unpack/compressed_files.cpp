#include "unpack/compressed_files.h"

CompressedFile CompressedFileList::takeCompressedFile() {
    const std::int32_t last = files_.itemCount() - 1;
    RecordNode<CompressedFile>* tail = files_.nodeAt(last);
    if (tail == nullptr) abnormalEnd();
    CompressedFile record = tail->record;
    files_.removeAt(last);
    return record;
}
