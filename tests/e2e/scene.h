// The world of one run, made from a case's recipe inside a scratch folder:
//
//   <scratch>/stage/    where jobs are copied, altered and packed
//   <scratch>/root/     everything the run may see and touch, watched for
//                       changes: work/ (the working directory), tmp/ (TMP)
//                       and whatever the recipe adds
//   <scratch>/double/   the unpacker's test double and its record of calls
//
// A recipe line is a command; paths that start with "stage/" lie in the
// stage, all others under root/. README.md lists the commands.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "e2e/text_match.h"

namespace e2e {

struct Scene {
    std::string scratch;
    std::string stage;
    std::string root;
    std::string workingDirectory;
    std::string doubleDirectory;
    std::string caseDirectory;
    std::string sample;  // set by "sample": a run over one of the shared samples
    Placeholders placeholders;
    std::vector<std::pair<std::string, std::string>> renames;  // for the next tar
};

// Makes the folders and the placeholders of a run.
Scene makeScene(const std::string& scratch, const std::string& caseDirectory);

// Carries out the recipe. Returns the empty text, or what failed;
// kSkipReason when the recipe needs the samples and they are absent.
std::string runRecipe(const std::vector<std::string>& recipe, Scene& scene);
extern const char kSkipReason[];
// The start of what runRecipe returns for a step that Windows can't take;
// the case is skipped with that text.
extern const char kNotOnWindows[];

// The tests/e2e folder and the shared samples folder.
std::string e2eDirectory();

}  // namespace e2e
