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

void reportCallFailure(const TextString& command) {
    std::printf("Error in Call unzip: %s\n", platform::asWritten(command.text()).c_str());
}

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

// "<tool>" x "<source>" -o"<target>" -y, paths as they stand, its console
// hidden or its output captured. An interrupted run starts nothing more, and
// after one the tool has been stopped and reaped before anything looks at
// what it left.
ArchiveUnpacker::ToolRun ArchiveUnpacker::runTool(const TextString& source, const TextString& target,
                                                  bool captureOutput) {
    ToolRun run;
    run.command.assign(unpackerCommand + " x \"" + source + "\" -o\"" + target + "\" -y");
    run.status = ToolRun::kInterrupted;
    if (platform::interrupted()) return run;
    platform::Process process;
    const platform::ProcessStreams streams =
        captureOutput ? platform::ProcessStreams::kCaptured : platform::ProcessStreams::kHidden;
    if (!process.start(run.command.text(), streams)) {
        reportCallFailure(run.command);
        run.status = ToolRun::kNotStarted;
        return run;
    }
    process.wait();
    if (platform::interrupted()) return run;
    run.output = process.output();
    // A code that can't be read leaves the handles open, as it always did.
    run.status = ToolRun::kNoExitCode;
    if (!process.exitCode(&run.exitCode)) return run;
    process.close();
    run.status = ToolRun::kEnded;
    return run;
}

std::int32_t ArchiveUnpacker::runUnpacker(const TextString& source, const TextString& target) {
    if (!unpackerFound && !findUnpacker()) return kPassNotRun;
    const ToolRun run = runTool(source, target, true);
    if (run.status == ToolRun::kInterrupted) return kPassInterrupted;
    if (run.status == ToolRun::kNoExitCode) reportCallFailure(run.command);
    if (run.status != ToolRun::kEnded) return kPassNotRun;
    treeCreated = true;
    treeInUse = true;
    // Other failures are judged by what the tool left.
    const std::string damage = unpackDamage(run.exitCode, run.output);
    if (!damage.empty()) {
        // 7-Zip's own text, in the bytes 7-Zip wrote it.
        std::printf("Error, unzip failed: %s\n", damage.c_str());
        return kPassDamaged;
    }
    return kPassRan;
}
