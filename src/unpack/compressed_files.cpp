#include "unpack/compressed_files.h"

CompressedFile CompressedFileList::takeCompressedFile() {
    if (tail == nullptr) abnormalEnd();
    CompressedFile record = tail->record;
    removeAt(count - 1);
    return record;
}
