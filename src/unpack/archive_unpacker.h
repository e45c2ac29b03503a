// ArchiveUnpacker: owns the temporary tree of one run. unpack() makes a
// directory with a random name, has the 7-Zip console tool qx7za.exe fill
// it, peels lone files (unpacked in turn) and lone directories (descended
// into) down to the job root, and expands the job's ".Z" members.
// removeTemporaryTree() takes the tree away again. The members are defined
// by concern: unpack_sequence.cpp, unpacker_invocation.cpp,
// compressed_expansion.cpp and tree_removal.cpp.
#pragma once

#include <cstdint>
#include <string>

#include "containers/text_string.h"
#include "unpack/compressed_files.h"

class ArchiveUnpacker {
public:
    // What runUnpacker gives: the tool ran to its end and reported no
    // damage, whatever its exit code; it could not be found ("Error, qx7za.exe
    // not found") or run ("Error in Call unzip"); it reported damage ("Error,
    // unzip failed: <its first error text>"; see unpack_damage.h); or the
    // run was interrupted, and nothing was printed.
    enum Pass : std::int32_t { kPassRan = 0, kPassNotRun = 1, kPassDamaged = 2, kPassInterrupted = 3 };
    std::int32_t runUnpacker(const TextString& source, const TextString& target);

    // 0: jobRoot and jobName are set. 1: a tree is in use already. 2: the
    // input or the temporary directory can't be statted. 3: no free name.
    // 6: the peeling ended in an empty directory. 9: nothing was unpacked.
    // 10: a pass of the tool reported damage: the tree is not the job.
    // 11: the run was interrupted.
    std::int32_t unpack(const TextString& inputFile, const TextString& tempDirectory, TextString& jobRoot,
                        TextString& jobName);

    // Queues every ".Z" / ".z" file below path in enumeration order.
    // 1 when path can't be enumerated.
    std::int32_t collectCompressedFiles(TextString path, CompressedFileList& queue);
    // Expands each queued file into its own directory, first found first.
    // 0, or the failure of the tool (see the exit code table in the .cpp).
    std::int32_t expandCompressedFiles(CompressedFileList& queue);

    // 0 when the tree is gone; 1 if not, or if there was none.
    std::int32_t removeTemporaryTree();
    // Empties the directory path: 0 done, 1 can't enumerate, 2 something
    // below could not be removed.
    std::int32_t removeTree(TextString path);

    bool treeInUse = false;
    TextString archivePath;
    bool treeCreated = false;
    TextString tempPath;
    TextString unpackerCommand;
    bool unpackerFound = false;

private:
    // One run of the tool on one source and target.
    struct ToolRun {
        enum Status { kEnded, kNotStarted, kNoExitCode, kInterrupted } status = kNotStarted;
        TextString command;
        std::uint32_t exitCode = 0;
        std::string output;  // when captured
    };
    ToolRun runTool(const TextString& source, const TextString& target, bool captureOutput);
    bool findUnpacker();
    bool claimTemporaryDirectory(const TextString& tempDirectory, char* name, TextString& jobRoot);
    std::int32_t peelToJob(TextString& jobRoot, TextString& jobName);
};
