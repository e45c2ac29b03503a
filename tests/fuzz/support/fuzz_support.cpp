#include "support/fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "design/design.h"
#include "odb/job_reader.h"
#include "support/reference_writer.h"

namespace {

[[noreturn]] void fail(const char* what, const std::string& detail) {
    std::fprintf(stderr, "fuzz harness: %s %s\n", what, detail.c_str());
    std::abort();
}

std::string jobRoot() { return fuzzing::workspace() + "/job"; }

}  // namespace

namespace fuzzing {

namespace fs = std::filesystem;

const std::string& workspace() {
    static const std::string path = [] {
        std::string pattern = (fs::temp_directory_path() / "odb2vrn-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) fail("no scratch directory", pattern);
        return pattern;
    }();
    // Registered after path is made, so it runs before path is destroyed.
    static const int removal = std::atexit([] {
        std::error_code error;
        fs::remove_all(workspace(), error);
    });
    (void)removal;
    return path;
}

void writeFile(const std::string& path, const std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) fail("can't write", path);
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

void setStandardInput(const std::string& text) {
    const std::string path = workspace() + "/stdin.txt";
    writeFile(path, text);
    if (std::freopen(path.c_str(), "r", stdin) == nullptr) fail("can't reopen standard input", path);
}

std::string matrixPath() { return jobRoot() + "/matrix/matrix"; }
std::string edaDataPath() { return jobRoot() + "/steps/pcb/eda/data"; }
std::string componentsPath(const char* layer) { return jobRoot() + "/steps/pcb/layers/" + layer + "/components"; }

void setUpJobTarget() {
    std::fflush(stdout);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
    setStandardInput("");
    fs::copy(ODB2VRN_FUZZ_BOARD, jobRoot(), fs::copy_options::recursive);
}

void writeNetlist(Design& design, const std::string& designName) {
    const reference::Vrn expected = reference::write(design, designName);
    if (expected.endsAbnormally) return;
    const std::string path = workspace() + "/out.vrn";
    TextString name(designName.c_str());
    if (!design.writeNetlistFile(path.c_str(), name)) fail("can't write the VRN file", path);
    std::string written;
    if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
        char block[65536];
        for (std::size_t got; (got = std::fread(block, 1, sizeof block, file)) > 0;) written.append(block, got);
        std::fclose(file);
    }
    if (written != expected.file) fail("the VRN file is not the reference writer's", path);
}

void convertJob() {
    Design design;
    JobReader reader(TextString(jobRoot().c_str()), TextString("job"), design);
    reader.readJob();  // a failed read keeps what it added; a run writes it
    writeNetlist(design, "job");
}

}  // namespace fuzzing
