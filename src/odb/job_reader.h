// JobReader: reads one unpacked ODB++ job into a Design. Of the job it
// reads four files, in this order: the matrix (for the step), the step's
// eda/data (nets and packages), and the components of the layers
// "comp_+_top" and "comp_+_bot". Every read returns 0 or 1 and no reason.
// Each file's reader is defined in a file of its own: matrix_reader.cpp,
// eda_data_reader.cpp and components_reader.cpp.
#pragma once

#include <cstdint>

#include "containers/item_list.h"
#include "containers/text_string.h"
#include "design/design.h"

class JobReader {
public:
    JobReader(TextString jobRoot, TextString jobName, Design& design);
    ~JobReader() { steps.clearItems(); }
    JobReader(const JobReader&) = delete;
    JobReader& operator=(const JobReader&) = delete;

    // The whole job: 0 when every read succeeded and the bottom file exists
    // (then "Number of net(s):%d\n" is printed), else 1.
    std::int32_t readJob();
    // Sets stepName; with several steps reads a step number from standard
    // input, silently. 0 when a step was chosen.
    std::int32_t readMatrix();
    std::int32_t readEdaData();
    std::int32_t readComponents(TextString layerName);

    // jobRoot/steps/<stepName>/eda/data
    TextString edaDataPath() const;
    // jobRoot/steps/<stepName>/layers/<layerName>/components
    TextString componentsPath(const char* layerName) const;

    TextString jobName;
    TextString jobRoot;
    Design& design;
    TextString stepName;
    ItemList<TextString> steps;  // the names, made in the design's arena
    std::int32_t stepCount = 0;
};
