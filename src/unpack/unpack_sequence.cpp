// unpack: the archive becomes a directory tree under a fresh random name,
// peeled down to the level that holds the job.
#include "platform/platform.h"
#include "unpack/archive_unpacker.h"

namespace {

// "%" stands twice, so it comes up twice as often as any other character.
const char kRandomNameAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_%-!@#%()$";
constexpr int kAlphabetSize = sizeof kRandomNameAlphabet - 1;
static_assert(kAlphabetSize == 46, "the random-name alphabet has 46 characters");

constexpr int kRandomNameLength = 8;
constexpr int kNameTries = 1000;

TextString childPath(const TextString& directory, const char* name) {
    return directory + platform::kPathSeparatorText + name;
}

TextString allEntries(const TextString& directory) { return childPath(directory, "*"); }

}  // namespace

void makeRandomName(char* buffer, int length) {
    for (int i = 0; i < length; ++i) buffer[i] = kRandomNameAlphabet[platform::randomNumber() % kAlphabetSize];
    buffer[length] = '\0';
}

std::int32_t ArchiveUnpacker::unpack(const TextString& inputFile, const TextString& tempDirectory,
                                     TextString& jobRoot, TextString& jobName) {
    TextString searchPattern;
    TextString filePath;
    if (treeInUse) return 1;
    unpackerFound = false;
    unpackerCommand.clear();
    archivePath.assign(inputFile);
    if (!platform::statPath(archivePath.text(), nullptr)) return 2;
    bool isDirectory = false;
    if (!platform::statPath(tempDirectory.text(), &isDirectory) || !isDirectory) return 2;

    // The folder is claimed before the unpacker runs: a run beside this one
    // that draws the same name finds it taken and draws again.
    char name[kRandomNameLength + 1];
    platform::DirectoryCreation claim = platform::DirectoryCreation::kExists;
    for (int tries = 0; tries < kNameTries && claim == platform::DirectoryCreation::kExists; ++tries) {
        makeRandomName(name, kRandomNameLength);
        jobRoot.assign(childPath(tempDirectory, name));
        claim = platform::createDirectory(jobRoot.text());
    }
    if (claim == platform::DirectoryCreation::kExists) return 3;
    tempPath.assign(jobRoot);
    if (claim == platform::DirectoryCreation::kCreated) {
        treeCreated = true;
        treeInUse = true;
    }
    // A folder that could not be made for another reason is left to the
    // unpacker, which fails on it as it always did.

    // Judged by what the directory holds, unless the tool reported damage.
    const bool damaged = runUnpacker(archivePath, tempPath) == kDamagedPass;
    treeCreated = true;
    treeInUse = true;
    if (damaged) return 10;

    platform::DirectorySearch search;
    platform::FindRecord record;
    if (!search.findFirst(jobRoot.text(), record)) return 9;
    search.close();
    searchPattern.assign(allEntries(jobRoot));
    jobName.assign(name);

    int count = 0;
    for (;;) {
        // The last entry enumerated is the counted one: "." and ".." come first.
        count = 0;
        if (search.findFirst(searchPattern.text(), record)) {
            do {
                if (record.name != "." && record.name != "..") ++count;
            } while (search.findNext(record));
            search.close();
        }
        if (count != 1) break;
        if ((record.attributes & platform::kAttributeDirectory) == 0) {
            // A lone file: unpack it beside itself, then delete it.
            filePath.assign(childPath(jobRoot, record.name.c_str()));
            const bool damagedFile = runUnpacker(filePath, jobRoot) == kDamagedPass;
            treeCreated = true;
            treeInUse = true;
            if (damagedFile) return 10;
            if ((record.attributes & platform::kAttributeReadOnly) != 0) platform::makeWritable(filePath.text());
            platform::deleteFile(filePath.text());  // remove(): fails only on read-only
        } else {
            jobRoot.assign(childPath(jobRoot, record.name.c_str()));
            jobName.assign(record.name.c_str());
            searchPattern.assign(allEntries(jobRoot));
        }
    }
    if (count == 0) return 6;

    CompressedFileList queue;
    collectCompressedFiles(jobRoot, queue);
    expandCompressedFiles(queue);
    queue.clearRecords();
    return 0;
}
