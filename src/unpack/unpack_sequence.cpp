// unpack: the archive becomes a directory tree under a fresh random name,
// peeled down to the level that holds the job.
#include "platform/platform.h"
#include "unpack/archive_unpacker.h"
#include "unpack/directory_walk.h"

namespace {

// "%" stands twice, so it comes up twice as often as any other character.
const char kRandomNameAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_%-!@#%()$";
constexpr int kAlphabetSize = sizeof kRandomNameAlphabet - 1;
static_assert(kAlphabetSize == 46, "the random-name alphabet has 46 characters");

constexpr int kRandomNameLength = 8;
constexpr int kNameTries = 1000;

// Fills buffer with length characters of the alphabet and a terminator.
void makeRandomName(char* buffer, int length) {
    for (int i = 0; i < length; ++i) buffer[i] = kRandomNameAlphabet[platform::randomNumber() % kAlphabetSize];
    buffer[length] = '\0';
}

// What unpack gives for a pass that can't be judged by the tree it left.
std::int32_t failedPass(std::int32_t pass) {
    return pass == ArchiveUnpacker::kPassDamaged ? 10 : pass == ArchiveUnpacker::kPassInterrupted ? 11 : 0;
}

}  // namespace

std::int32_t ArchiveUnpacker::unpack(const TextString& inputFile, const TextString& tempDirectory,
                                     TextString& jobRoot, TextString& jobName) {
    if (treeInUse) return 1;
    unpackerFound = false;
    unpackerCommand.clear();
    archivePath.assign(inputFile);
    if (!platform::statPath(archivePath.text(), nullptr)) return 2;
    bool isDirectory = false;
    if (!platform::statPath(tempDirectory.text(), &isDirectory) || !isDirectory) return 2;
    char name[kRandomNameLength + 1];
    if (!claimTemporaryDirectory(tempDirectory, name, jobRoot)) return 3;

    // Judged by what the directory holds, unless the tool reported damage
    // or the run was interrupted.
    const std::int32_t pass = runUnpacker(archivePath, tempPath);
    treeCreated = true;
    treeInUse = true;
    if (failedPass(pass) != 0) return failedPass(pass);
    platform::FindRecord record;
    if (!platform::DirectorySearch().findFirst(jobRoot.text(), record)) return 9;
    jobName.assign(name);
    const std::int32_t peeled = peelToJob(jobRoot, jobName);
    if (peeled != 0) return peeled;

    CompressedFileList queue;
    collectCompressedFiles(jobRoot, queue);
    expandCompressedFiles(queue);
    return 0;
}

// The folder is claimed before the unpacker runs: a run beside this one that
// draws the same name finds it taken and draws again. False when no name of
// kNameTries was free.
bool ArchiveUnpacker::claimTemporaryDirectory(const TextString& tempDirectory, char* name, TextString& jobRoot) {
    platform::DirectoryCreation claim = platform::DirectoryCreation::kExists;
    for (int tries = 0; tries < kNameTries && claim == platform::DirectoryCreation::kExists; ++tries) {
        makeRandomName(name, kRandomNameLength);
        jobRoot.assign(childPath(tempDirectory, name));
        claim = platform::createDirectory(jobRoot.text());
    }
    if (claim == platform::DirectoryCreation::kExists) return false;
    tempPath.assign(jobRoot);
    if (claim == platform::DirectoryCreation::kCreated) {
        treeCreated = true;
        treeInUse = true;
    }
    // A folder that could not be made for another reason is left to the
    // unpacker, which fails on it as it always did.
    return true;
}

// Unpacks a lone file beside itself and deletes it, or enters a lone
// directory, until a level holds several entries: the job. 0 there, 6 at an
// empty level, or the code of a pass that failed.
std::int32_t ArchiveUnpacker::peelToJob(TextString& jobRoot, TextString& jobName) {
    for (;;) {
        int count = 0;
        platform::FindRecord lone;
        forEachEntry(jobRoot, [&](const platform::FindRecord& record) {
            ++count;
            lone = record;
            return true;
        });
        if (count == 0) return 6;
        if (count > 1) return 0;
        if (isDirectoryEntry(lone)) {
            jobRoot.assign(childPath(jobRoot, lone.name));
            jobName.assign(lone.name.c_str());
            continue;
        }
        const TextString filePath = childPath(jobRoot, lone.name);
        const std::int32_t pass = runUnpacker(filePath, jobRoot);
        treeCreated = true;
        treeInUse = true;
        if (failedPass(pass) != 0) return failedPass(pass);
        if ((lone.attributes & platform::kAttributeReadOnly) != 0) platform::makeWritable(filePath.text());
        platform::deleteFile(filePath.text());  // remove(): fails only on read-only
    }
}
