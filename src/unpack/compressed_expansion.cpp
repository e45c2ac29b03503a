// The ".Z" / ".z" members of a job: found by one walk of the job tree and
// expanded in place by the unpacker, in the order they were found. What an
// expansion produces is not looked at again; the compressed files stay.
#include <cstdio>

#include "platform/platform.h"
#include "unpack/archive_unpacker.h"

std::int32_t ArchiveUnpacker::collectCompressedFiles(TextString path, CompressedFileList& queue) {
    platform::DirectorySearch search;
    platform::FindRecord record;
    if (!search.findFirst((path + platform::kPathSeparatorText + "*").text(), record)) return 1;
    do {
        if (record.name == "." || record.name == "..") continue;
        if ((record.attributes & platform::kAttributeDirectory) != 0) {
            collectCompressedFiles(path + platform::kPathSeparatorText + record.name.c_str(), queue);
            continue;
        }
        const std::string extension = platform::pathExtension(record.name.c_str());
        if (extension == ".Z" || extension == ".z") {
            CompressedFile file;
            file.directory.assign(path);
            file.fileName.assign(record.name.c_str());
            queue.addCompressedFile(file);
        }
    } while (search.findNext(record));
    return 0;
}

std::int32_t ArchiveUnpacker::expandCompressedFiles(CompressedFileList& queue) {
    while (queue.itemCount() > 0) {
        const CompressedFile file = queue.takeCompressedFile();
        const TextString command = unpackerCommand + " x \"" + file.directory + platform::kPathSeparatorText +
                                   file.fileName + "\" -o\"" + file.directory + "\" -y";
        std::uint32_t exitCode = 0;
        const std::int32_t run = runToEnd(command, &exitCode, nullptr);
        if (run == 1) std::printf("Error in Call unzip: %s\n", platform::asWritten(command.text()).c_str());
        if (run != 0) return 1;
        // 7-Zip's exit codes: 0 fine, 1 warning, 2 fatal error, 7 command
        // line error, 8 out of memory, 255 stopped by the user.
        switch (exitCode) {
            case 0:
            case 1:
                continue;
            case 2:
                std::printf("Cannot open : %s\n", platform::asWritten(file.fileName.text()).c_str());
                std::printf("Use 7-Zip (A) 9.20 (2010-11-18) from Korvane Systems' installation\n");
                return 2;
            case 7:
                std::printf("Bad Command : %s\n", platform::asWritten(command.text()).c_str());
                return 2;
            case 8:
                return 3;
            case 255:
                return 2;
            default:
                return static_cast<std::int32_t>(exitCode);
        }
    }
    return 0;
}
