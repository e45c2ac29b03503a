#include "frame/conversion.h"

#include "design/design.h"
#include "frame/output_stage.h"
#include "frame/run_options.h"
#include "odb/job_reader.h"
#include "platform/platform.h"
#include "unpack/archive_unpacker.h"

int runConversion(RunOptions& options) {
    platform::handleInterruptions();
    ArchiveUnpacker unpacker;
    Design design;
    TextString jobRoot;
    TextString jobName;
    int exitCode = 0;
    // Each stage hands an interruption up by stopping; what follows it is
    // skipped.
    if (unpacker.unpack(options.inputFile, options.tempDirectory, jobRoot, jobName) != 0) {
        exitCode = 1;
    } else if (!platform::interrupted()) {
        JobReader(jobRoot, jobName, design).readJob();  // a job read only in part is still written
        if (!platform::interrupted()) runOutputStage(options, design);
    }
    // An interrupted run leaves no temporary tree, and no unfinished VRN
    // file: the writer removed it. A complete one stays, and so does an
    // older output moved aside.
    unpacker.removeTemporaryTree();
    if (platform::interrupted()) platform::endByInterruption();
    return exitCode;
}
