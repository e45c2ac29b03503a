// odbgen: writes a large synthetic ODB++ job, deterministic for its seed,
// for benchmarks and for the test of the converter on a generated board.
//
//   odbgen [-c COMPONENTS] [-s SEED] [-g GROUND_PERCENT] [--crlf]
//          [--job NAME] [--tgz ARCHIVE] OUT_DIR
//
// The job goes to OUT_DIR/NAME (NAME defaults to "odb"); with --tgz it is
// also packed into ARCHIVE with NAME as its one wrapping folder, as
// exporters pack jobs. A summary of the board's shape goes to stdout.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "board.h"
#include "job_writer.h"

namespace {

struct Options {
    BoardShape shape;
    bool crlf = false;
    std::string job = "odb";
    std::string archive;
    std::string outDir;
};

void printUsage() {
    std::fprintf(stderr,
                 "usage: odbgen [-c COMPONENTS] [-s SEED] [-g GROUND_PERCENT] [--crlf] [--job NAME]\n"
                 "              [--tgz ARCHIVE] OUT_DIR\n"
                 "  -c  components on the board (default 1000)\n"
                 "  -s  seed; the same seed and options give the same job (default 1)\n"
                 "  -g  share of all pins on the GND net, in percent (default 5)\n"
                 "  --crlf  CR LF line ends, as some exporters write\n"
                 "  --job   the job folder's name (default odb)\n"
                 "  --tgz   also pack the job folder into this .tgz\n");
}

bool parseNumber(const char* text, long long low, long long high, long long& value) {
    char* end = nullptr;
    errno = 0;
    value = std::strtoll(text, &end, 10);
    return errno == 0 && end != text && *end == '\0' && value >= low && value <= high;
}

bool parseOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        long long number = 0;
        if (arg == "-c" && hasValue && parseNumber(argv[i + 1], 1, 20000000, number)) {
            options.shape.components = static_cast<std::int32_t>(number);
            ++i;
        } else if (arg == "-s" && hasValue && parseNumber(argv[i + 1], 0, 0x7fffffffffffffffLL, number)) {
            options.shape.seed = static_cast<std::uint64_t>(number);
            ++i;
        } else if (arg == "-g" && hasValue && parseNumber(argv[i + 1], 0, 90, number)) {
            options.shape.groundPercent = static_cast<std::int32_t>(number);
            ++i;
        } else if (arg == "--crlf") {
            options.crlf = true;
        } else if (arg == "--job" && hasValue && argv[i + 1][0] != '\0') {
            options.job = argv[++i];
        } else if (arg == "--tgz" && hasValue && argv[i + 1][0] != '\0') {
            options.archive = argv[++i];
        } else if (arg[0] != '-' && options.outDir.empty()) {
            options.outDir = arg;
        } else {
            return false;
        }
    }
    return !options.outDir.empty();
}

// tar with gzip is what exporters' .tgz files are; the shell sees the paths
// only inside double quotes, so a path with one in it is refused.
bool packJob(const Options& options) {
    for (const std::string* path : {&options.outDir, &options.job, &options.archive}) {
        if (path->find('"') != std::string::npos) {
            std::fprintf(stderr, "odbgen: cannot pack a path holding a double quote: %s\n", path->c_str());
            return false;
        }
    }
    const std::string command =
        "tar -C \"" + options.outDir + "\" -czf \"" + options.archive + "\" \"" + options.job + "\"";
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "odbgen: packing failed: %s\n", command.c_str());
        return false;
    }
    return true;
}

void printSummary(const Board& board, const JobSizes& sizes) {
    std::int64_t netPins = 0;
    for (std::size_t n = 1; n < board.nets.size(); ++n) netPins += board.nets[n].pinCount;
    std::int64_t ground = 0;
    for (const Net& net : board.nets) {
        if (net.name == "GND") ground = net.pinCount;
    }
    const double megabyte = 1e6;
    std::printf("components %zu (top %zu, bottom %zu), packages %zu, nets %zu, net pins %lld, pins %d\n",
                board.components.size(), board.topFile.size(), board.bottomFile.size(), board.packages.size(),
                board.nets.size() - 1, static_cast<long long>(netPins), board.pinCount());
    std::printf("GND pins %lld (%.1f%% of all pins)\n", static_cast<long long>(ground),
                board.pinCount() > 0 ? 100.0 * static_cast<double>(ground) / board.pinCount() : 0.0);
    std::printf("read files %.1f MB, job %.1f MB in %d files\n", static_cast<double>(sizes.readFiles) / megabyte,
                static_cast<double>(sizes.total) / megabyte, sizes.files);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parseOptions(argc, argv, options)) {
        printUsage();
        return 2;
    }
    const Board board = buildBoard(options.shape);
    JobSizes sizes;
    if (!writeJob(board, options.outDir + "/" + options.job, options.crlf ? "\r\n" : "\n", sizes)) return 1;
    if (!options.archive.empty() && !packJob(options)) return 1;
    printSummary(board, sizes);
    return 0;
}
