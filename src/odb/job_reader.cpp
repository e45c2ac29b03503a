#include "odb/job_reader.h"

#include <cstdio>

#include "odb/line_scanner.h"
#include "platform/platform.h"

JobReader::JobReader(TextString root, TextString name, Design& target)
    : jobName(name), jobRoot(root), design(target), steps(target.arena) {}

TextString JobReader::edaDataPath() const {
    const char* sep = platform::kPathSeparatorText;
    return jobRoot + sep + "steps" + sep + stepName + sep + "eda" + sep + "data";
}

TextString JobReader::componentsPath(const char* layerName) const {
    const char* sep = platform::kPathSeparatorText;
    return jobRoot + sep + "steps" + sep + stepName + sep + "layers" + sep + layerName + sep + "components";
}

std::int32_t JobReader::readJob() {
    // Between the files, with none of them open, an interrupted run stops
    // reading and hands that up as a failed read.
    if (readMatrix() != 0 || platform::interrupted()) return 1;
    if (readEdaData() != 0 || platform::interrupted()) return 1;
    static const char kTop[] = "comp_+_top";
    static const char kBottom[] = "comp_+_bot";
    // A missing top file is accepted; a missing bottom file is not.
    if (fileExists(componentsPath(kTop)) == 0 && readComponents(TextString(kTop)) != 0) return 1;
    if (platform::interrupted() || fileExists(componentsPath(kBottom)) != 0) return 1;
    if (readComponents(TextString(kBottom)) != 0) return 1;
    std::printf("Number of net(s):%d\n", design.nets.itemCount());
    return 0;
}
