#include "job_writer.h"

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <system_error>

#include "job_files.h"

namespace {

class TreeWriter {
public:
    TreeWriter(const std::string& root, const char* lineEnd, JobSizes& sizes)
        : root_(root), lineEnd_(lineEnd), sizes_(sizes) {}

    // Writes root/relative through fill; `read` marks the converter's files.
    bool file(const std::string& relative, bool read, const std::function<void(TextSink&)>& fill) {
        const std::filesystem::path path = std::filesystem::path(root_) / relative;
        std::error_code error;
        std::filesystem::create_directories(path.parent_path(), error);
        TextSink sink(path.string(), lineEnd_);
        if (!error && sink.ok()) fill(sink);
        if (error || !sink.close()) {
            std::fprintf(stderr, "odbgen: cannot write %s\n", path.string().c_str());
            return false;
        }
        sizes_.total += sink.bytesWritten();
        if (read) sizes_.readFiles += sink.bytesWritten();
        ++sizes_.files;
        return true;
    }

private:
    std::string root_;
    const char* lineEnd_;
    JobSizes& sizes_;
};

std::string stepFolder() {
    std::string name = kStepName;
    for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return "steps/" + name + "/";
}

}  // namespace

bool writeJob(const Board& board, const std::string& root, const char* lineEnd, JobSizes& sizes) {
    TreeWriter tree(root, lineEnd, sizes);
    const std::string step = stepFolder();
    bool ok = tree.file("matrix/matrix", true, [](TextSink& out) { writeMatrix(out); });
    const std::string jobName = std::filesystem::path(root).filename().string();
    ok = ok && tree.file("misc/info", false, [&jobName](TextSink& out) {
        out.put("JOB_NAME=").put(jobName).line();
        out.line("UNITS=MM").line("ODB_VERSION_MAJOR=8").line("ODB_VERSION_MINOR=1");
        out.line("ODB_SOURCE=Korvane odbgen").line("CREATION_DATE=20250101.000000").line("SAVE_DATE=20250101.000000");
    });
    ok = ok && tree.file(step + "stephdr", false, [](TextSink& out) {
        out.line("X_DATUM=0.0000").line("Y_DATUM=0.0000").line("X_ORIGIN=0.0000").line("Y_ORIGIN=0.0000");
    });
    ok = ok && tree.file(step + "profile", false, [&board](TextSink& out) {
        out.line("UNITS=MM").line("#").line("#Num Features").line("#").line("F 1").line("S P 0");
        out.line("OB 0.0000 0.0000 I");
        out.put("OS ").millimetres(board.width).put(" 0.0000").line();
        out.put("OS ").millimetres(board.width).blank().millimetres(board.height).line();
        out.put("OS 0.0000 ").millimetres(board.height).line();
        out.line("OS 0.0000 0.0000").line("OE").line("SE");
    });
    ok = ok && tree.file(step + "eda/data", true, [&board](TextSink& out) { writeEdaData(board, out); });
    for (const Layer& layer : jobLayers()) {
        const std::string folder = step + "layers/" + layer.name + "/";
        ok = ok && tree.file(folder + "attrlist", false, [&layer](TextSink& out) {
            out.line("UNITS=MM").put(".layer_dielectric=").put(layer.use == LayerUse::Dielectric ? "0.1" : "0").line();
        });
        ok = ok && tree.file(folder + "features", false, [&](TextSink& out) { writeFeatures(board, layer, out); });
        if (layer.use == LayerUse::Components) {
            ok = ok && tree.file(folder + "components", true,
                                 [&](TextSink& out) { writeComponents(board, layer.side, out); });
        }
    }
    return ok;
}
