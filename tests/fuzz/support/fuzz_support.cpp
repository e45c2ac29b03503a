#include "support/fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <vector>

#include "design/design.h"
#include "design/run_lifetime.h"
#include "odb/job_reader.h"

namespace {

[[noreturn]] void fail(const char* what, const std::string& detail) {
    std::fprintf(stderr, "fuzz harness: %s %s\n", what, detail.c_str());
    std::abort();
}

struct RunObject {
    void* storage;
    std::size_t size, alignment;
};
std::vector<RunObject> runObjects;

// The converter makes three kinds of run objects; their sizes tell them apart.
static_assert(sizeof(Net) != sizeof(NetPin) && sizeof(Net) != sizeof(TextString) &&
              sizeof(NetPin) != sizeof(TextString));

void releaseRunObjects() {
    for (const RunObject& object : runObjects) {
        if (object.size == sizeof(Net)) static_cast<Net*>(object.storage)->~Net();
        else if (object.size == sizeof(NetPin)) static_cast<NetPin*>(object.storage)->~NetPin();
        else if (object.size == sizeof(TextString)) static_cast<TextString*>(object.storage)->~TextString();
        else fail("a run object of unknown size", std::to_string(object.size));
    }
    for (const RunObject& object : runObjects) ::operator delete(object.storage, std::align_val_t(object.alignment));
    runObjects.clear();
}

std::string jobRoot() { return fuzzing::workspace() + "/job"; }

}  // namespace

void* allocateForRun(std::size_t size, std::size_t alignment) {
    void* storage = ::operator new(size, std::align_val_t(alignment));
    runObjects.push_back({storage, size, alignment});
    return storage;
}

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

namespace {

bool writeEndsAbnormally(Design& design) {
    const std::int32_t packages = design.packages.itemCount();
    for (auto* net = design.nets.head; net != nullptr; net = net->next) {
        bool carried = false;
        std::int32_t packageIndex = 0;
        for (auto* node = net->item->pins.head; node != nullptr; node = node->next) {
            const std::int32_t pin = node->item->pinIndex;
            Part* component = nullptr;  // the first with the pin's key
            for (auto* c = design.components.head; c != nullptr && component == nullptr; c = c->next) {
                if (std::strcmp(c->item->text(), node->item->key.text()) == 0) component = c->item;
            }
            const bool pinFound = component == nullptr || pin < component->pins.itemCount();
            if (component != nullptr) {
                if (pinFound && pin < 0) return true;
                carried = true;
                packageIndex = component->packageIndex;
            }
            if (!carried) continue;
            if (packageIndex < 0 || packageIndex >= packages) return true;
            if (pinFound && (pin < 0 || pin >= design.packages.itemAt(packageIndex)->pins.itemCount())) return true;
        }
    }
    return false;
}

}  // namespace

void writeNetlist(Design& design, const std::string& designName) {
    if (writeEndsAbnormally(design)) return;
    const std::string path = workspace() + "/out.vrn";
    TextString name(designName.c_str());
    if (!design.writeNetlistFile(path.c_str(), name)) fail("can't write the VRN file", path);
    std::FILE* file = std::fopen(path.c_str(), "rb");
    char tail[12] = {};
    const bool complete = file != nullptr && std::fseek(file, -11, SEEK_END) == 0 && std::fread(tail, 1, 11, file) == 11;
    if (file != nullptr) std::fclose(file);
    if (!complete || std::strcmp(tail, "END_DESIGN\n") != 0) fail("the VRN file does not end in END_DESIGN", path);
}

void convertJob() {
    {
        Design design;
        JobReader reader(TextString(jobRoot().c_str()), TextString("job"), design);
        reader.readJob();  // a failed read keeps what it added; a run writes it
        writeNetlist(design, "job");
    }
    releaseRunObjects();
}

}  // namespace fuzzing
