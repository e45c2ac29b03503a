// Finding and running the 7-Zip console tool qx7za.exe. It is looked for in
// the product directories named by RQT32 and VOSKARDIR, then on the search
// path; a candidate is found when it can be started.
#include <cstdio>

#include "platform/platform.h"
#include "unpack/archive_unpacker.h"
#include "unpack/unpack_damage.h"

namespace {

const char kUnpackerName[] = "qx7za.exe";

// Starts the candidate once with no arguments. The probe is not waited for
// and, never closed, keeps its handles: it may still run when the unpack
// starts.
bool probe(const TextString& command) { return platform::Process().start(command.text()); }

}  // namespace

bool ArchiveUnpacker::findUnpacker() {
    for (const char* variable : {"RQT32", "VOSKARDIR"}) {
        const char* directory = platform::environmentValue(variable);
        if (directory == nullptr || directory[0] == '\0') continue;
        TextString command = TextString("\"") + directory + platform::kPathSeparatorText + kUnpackerName + "\"";
        if (probe(command)) {
            unpackerFound = true;
            unpackerCommand.assign(command);
            std::printf("Using unzip: %s\n", platform::asWritten(unpackerCommand.text()).c_str());
            return true;
        }
    }
    TextString bare(kUnpackerName);
    if (probe(bare)) {
        unpackerFound = true;
        unpackerCommand.assign(bare);
        std::printf("Using unzip from search path\n");
        return true;
    }
    std::printf("Error, qx7za.exe not found\n");
    return false;
}

std::int32_t runToEnd(const TextString& command, std::uint32_t* exitCode, std::string* output) {
    // An interrupted run starts nothing more, and ends once the tool has
    // been stopped and reaped, before anything looks at what it left.
    platform::stopIfInterrupted();
    platform::Process process;
    const platform::ProcessStreams streams =
        output != nullptr ? platform::ProcessStreams::kCaptured : platform::ProcessStreams::kHidden;
    if (!process.start(command.text(), streams)) return 1;
    process.wait();
    platform::stopIfInterrupted();
    if (output != nullptr) *output = process.output();
    // A code that can't be read leaves the handles open, as it always did.
    if (!process.exitCode(exitCode)) return 2;
    process.close();
    return 0;
}

std::int32_t ArchiveUnpacker::runUnpacker(const TextString& source, const TextString& target) {
    if (!unpackerFound && !findUnpacker()) return 1;
    // "<tool>" x "<source>" -o"<target>" -y, paths as they stand.
    const TextString command = unpackerCommand + " x \"" + source + "\" -o\"" + target + "\" -y";
    std::uint32_t exitCode = 0;
    std::string output;
    if (runToEnd(command, &exitCode, &output) != 0) {
        std::printf("Error in Call unzip: %s\n", platform::asWritten(command.text()).c_str());
        return 1;
    }
    treeCreated = true;
    treeInUse = true;
    // Other failures are judged by what the tool left.
    const std::string damage = unpackDamage(exitCode, output);
    if (!damage.empty()) {
        // 7-Zip's own text, in the bytes 7-Zip wrote it.
        std::printf("Error, unzip failed: %s\n", damage.c_str());
        return kDamagedPass;
    }
    return 0;
}
