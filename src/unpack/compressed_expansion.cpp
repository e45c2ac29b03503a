// The ".Z" / ".z" members of a job: found by one walk of the job tree and
// expanded in place by the unpacker, in the order they were found. What an
// expansion produces is not looked at again; the compressed files stay.
#include <cstdio>

#include "platform/platform.h"
#include "unpack/archive_unpacker.h"
#include "unpack/directory_walk.h"

std::int32_t ArchiveUnpacker::collectCompressedFiles(TextString path, CompressedFileList& queue) {
    const bool listed = forEachEntry(path, [&](const platform::FindRecord& record) {
        if (isDirectoryEntry(record)) {
            collectCompressedFiles(childPath(path, record.name), queue);
            return true;
        }
        const std::string extension = platform::pathExtension(record.name.c_str());
        if (extension == ".Z" || extension == ".z") {
            CompressedFile file;
            file.directory.assign(path);
            file.fileName.assign(record.name.c_str());
            queue.addCompressedFile(file);
        }
        return true;
    });
    return listed ? 0 : 1;
}

std::int32_t ArchiveUnpacker::expandCompressedFiles(CompressedFileList& queue) {
    while (queue.itemCount() > 0) {
        const CompressedFile file = queue.takeCompressedFile();
        const ToolRun run = runTool(childPath(file.directory, file.fileName.text()), file.directory, false);
        if (run.status != ToolRun::kEnded) return 1;
        // 7-Zip's exit codes: 0 fine, 1 warning, 2 fatal error, 7 command
        // line error, 8 out of memory, 255 stopped by the user.
        switch (run.exitCode) {
            case 0:
            case 1:
                continue;
            case 2:
                std::printf("Cannot open : %s\n", platform::asWritten(file.fileName.text()).c_str());
                std::printf("Use 7-Zip (A) 9.20 (2010-11-18) from Korvane Systems' installation\n");
                return 2;
            case 7:
                std::printf("Bad Command : %s\n", platform::asWritten(run.command.text()).c_str());
                return 2;
            case 8:
                return 3;
            case 255:
                return 2;
            default:
                return static_cast<std::int32_t>(run.exitCode);
        }
    }
    return 0;
}
