#include "frame/conversion.h"

#include "design/design.h"
#include "frame/run_options.h"
#include "odb/job_reader.h"
#include "unpack/archive_unpacker.h"

std::int32_t readJobInto(const TextString& jobRoot, const TextString& jobName, Design& design) {
    JobReader reader(jobRoot, jobName, design);
    return reader.readJob();
}

int runConversion(RunOptions& options) {
    ArchiveUnpacker unpacker;
    Design design;
    TextString jobRoot;
    TextString jobName;
    if (unpacker.unpack(options.inputFile, options.tempDirectory, jobRoot, jobName) != 0) {
        unpacker.removeTemporaryTree();
        return 1;
    }
    readJobInto(jobRoot, jobName, design);  // a job read only in part is still written
    runOutputStage(options, design);
    unpacker.removeTemporaryTree();
    return 0;
}
