// The VRN writer over small boards, most of them in tests/design/cases:
// <name>.in describes the board (see DesignBuilder::run), <name>.out is the whole file
// written and, behind a line "--- console", what the write printed.
#include "design/netlist_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "design/design.h"
#include "support/design_builder.h"
#include "support/reference_writer.h"
#include "support/test_support.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

namespace {

namespace fs = std::filesystem;

// A Design built from a program of DesignBuilder, and its VRN file.
class Board {
public:
    explicit Board(const std::string& program) {
        testsupport::DesignBuilder builder(design_);
        name_ = builder.run(program);
        EXPECT_EQ(builder.unknownLines, "");
    }

    bool write() {
        TextString name(name_.c_str());
        return design_.writeNetlistFile(path_.c_str(), name);
    }
    const std::string& path() const { return path_; }
    reference::Vrn reference() { return reference::write(design_, name_); }

    // The file written, which must succeed, and the console's text.
    std::string written() {
        testing::internal::CaptureStdout();
        EXPECT_TRUE(write());
        std::fflush(stdout);
        const std::string console = testing::internal::GetCapturedStdout();
        std::string text;
        for (const char c : testsupport::readFile(path_)) {
            if (c != '\r' || testsupport::asWrittenText("\n") == "\n") text += c;  // text-mode CR LF on Windows
        }
        // Gone before the next board: a file system may flush a file that is
        // opened again to be truncated, and wait for the disk.
        std::remove(path_.c_str());
        return console.empty() ? text : text + "--- console\n" + console;
    }

private:
    Design design_;
    std::string name_;
    testsupport::ScratchDir scratch_;
    const std::string path_ = scratch_ / "out.vrn";
};

// What a child process was at when it ended abnormally: a writer that ends
// the run by a fault fails the test that made it write, not the whole binary.
std::string currentBoard;
extern "C" void reportCurrentBoard(int) {
    std::fputs(currentBoard.c_str(), stderr);
    std::fflush(stderr);
    std::_Exit(3);
}

// Runs check in a child process and expects it to end normally with nothing
// wrong; check gives what is wrong, or the empty text.
void expectInChild(const std::function<std::string()>& check) {
    EXPECT_EXIT(
        {
            std::signal(SIGABRT, reportCurrentBoard);
            const std::string wrong = check();
            std::fputs(wrong.c_str(), stderr);
            std::fflush(stderr);
            std::_Exit(wrong.empty() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(NetlistWriterTest, CaseFilesGiveTheirFile) {
    std::vector<fs::path> inputs;
    for (const auto& entry : fs::directory_iterator(testsupport::testDataDir() + "/design/cases")) {
        if (entry.path().extension() == ".in") inputs.push_back(entry.path());
    }
    std::sort(inputs.begin(), inputs.end());
    EXPECT_FALSE(inputs.empty());
    expectInChild([&inputs] {
        std::string wrong;
        for (fs::path input : inputs) {
            currentBoard = "ended abnormally on the case " + input.stem().string() + "\n";
            const std::string written = Board(testsupport::readFile(input.string())).written();
            if (written != testsupport::readFile(input.replace_extension(".out").string())) {
                wrong += input.stem().string() + " gives:\n" + written;
            }
        }
        return wrong;
    });
}

// A board program drawn from seed: the shapes real boards have and those the
// writer must survive. Keys numbered per side and beyond the component count,
// duplicated, misspelt or matching nothing; pins in and out of range and
// negative; nets longer than any look-ahead; texts with refdes prefixes,
// blanks, semicolons and great lengths; empty lists of every kind.
std::string randomBoard(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const std::string longText(40 + below(30), 'L');
    const auto text = [&](const std::string& refdes) {
        const std::string texts[] = {"\"\"", "1", "2", "A", "U1-2", "U1-", "-", "-7", "X--5", "???", "10K;1%",
                                     "\"a b\"", "NETLIST", longText, refdes + "-" + std::to_string(below(4)),
                                     refdes + "-", refdes + "-A-B", "U" + std::to_string(below(3)) + "-1"};
        return texts[below(std::size(texts))];
    };
    std::string program = "design " + std::string(below(8) == 0 ? "part list" : "board") + "\n";
    const int packages = below(20) == 0 ? 0 : 1 + below(3);
    for (int p = 0; p < packages; ++p) program += "package " + std::to_string(below(30) == 0 ? below(3) : 12) + "\n";
    const int components = below(5) == 0 ? 0 : 1 + below(30);
    std::vector<std::string> keys;
    std::vector<int> pinCounts;
    int numbered[2] = {0, 0};
    for (int c = 0; c < components; ++c) {
        const int side = below(2);
        const std::string oddKeys[] = {"T0" + std::to_string(below(9)), "X" + std::to_string(below(3)), "t1", "T+1",
                                       "T", "\"\"", "B-2", "T99999999999999999999",
                                       "T" + std::to_string(3 * components + 20 + below(5))};
        std::string key = std::string(side == 0 ? "T" : "B") + std::to_string(numbered[side]++);
        if (below(10) == 0) key = oddKeys[below(std::size(oddKeys))];
        else if (below(12) == 0 && !keys.empty()) key = keys[below(static_cast<int>(keys.size()))];
        const std::string refdes = below(15) == 0 ? text("R") : "R" + std::to_string(c) + std::string(below(12) == 0 ? 14 : 0, 'x');
        program += "component " + key + " " + refdes + " " + text(refdes);
        const std::string properties[] = {"value=", "part=", "mpn="};
        for (const std::string& property : properties) {
            if (below(3) == 0) program += " " + property + text(refdes);
        }
        if (below(30) == 0) program += " state=0";
        program += " package=" + std::to_string(below(60) == 0 || packages == 0 ? packages + below(2) - 1 : below(packages));
        const int pins = below(6) == 0 ? 0 : 1 + below(10);
        program += " pins";
        for (int p = 0; p < pins; ++p) program += " " + text(refdes);
        program += "\n";
        keys.push_back(key);
        pinCounts.push_back(pins);
    }
    const int nets = below(12);
    for (int n = 0; n < nets; ++n) {
        const std::string names[] = {"N" + std::to_string(n), "GND", longText, "\"\"", "A_" + std::to_string(n)};
        program += "net " + names[below(std::size(names))] + (below(10) == 0 ? " unnoted" : "");
        const int pins = below(8) == 0 ? 17 + below(30) : below(8);
        for (int p = 0; p < pins; ++p) {
            std::string key = "X" + std::to_string(below(3));
            int pinIndex = below(12);
            if (!keys.empty() && below(5) != 0) {
                const int c = below(static_cast<int>(keys.size()));
                key = keys[c];
                pinIndex = below(8) == 0 ? pinCounts[c] + below(3) : below(pinCounts[c] + 1);
            } else if (below(2) == 0) {
                key = std::string(below(2) == 0 ? "T" : "B") + std::to_string(below(3 * components + 40));
            }
            if (below(150) == 0) pinIndex = -1 - below(2);
            program += " " + key + "/" + std::to_string(pinIndex);
        }
        program += "\n";
    }
    if (below(10) == 0) program += "note " + std::to_string(below(60)) + "\n";
    return program;
}

// The writer against the plain reference, byte for byte, over many drawn
// boards. Where the reference says the run ends, a few of them show that the
// writer ends it too.
TEST(NetlistWriterTest, DrawnBoardsGiveTheReferenceFile) {
    std::vector<unsigned> ending;
    expectInChild([&ending] {
        int written = 0;
        for (unsigned seed = 0; seed < 2700; ++seed) {
            const std::string program = randomBoard(seed);
            currentBoard = "ended abnormally on seed " + std::to_string(seed) + ", board:\n" + program;
            Board board(program);
            const reference::Vrn expected = board.reference();
            if (expected.endsAbnormally) continue;
            ++written;
            const std::string console = expected.console.empty() ? "" : "--- console\n" + expected.console;
            if (board.written() != expected.file + console) return "seed " + std::to_string(seed) + ", board:\n" + program;
        }
        return written >= 2000 ? std::string() : "only " + std::to_string(written) + " boards written";
    });
    for (unsigned seed = 0; ending.size() < 5; ++seed) {
        if (Board(randomBoard(seed)).reference().endsAbnormally) ending.push_back(seed);
    }
    for (const unsigned seed : ending) {
        Board board(randomBoard(seed));
        EXPECT_DEATH(board.write(), "^$") << randomBoard(seed);
    }
}

// An index the model doesn't hold ends the run without a word. The package
// number is looked at for every pin of a found component, a failed one too.
TEST(NetlistWriterDeathTest, IndexOutsideTheModelEndsTheRunSilently) {
    const char* const programs[] = {
        "package 2\ncomponent T0 U1 X package=1 pins 1\nnet N T0/0",   // package number past the packages
        "package 2\ncomponent T0 U1 X package=-1 pins 1\nnet N T0/0",  // negative package number
        "package 2\ncomponent T0 C9 X package=3\nnet N T0/0",          // the same, for a component without pins
        "package 2\ncomponent T0 U1 X pins 1 2 3\nnet N T0/2",          // pin index past the package's pins
        "package 2\ncomponent T0 U1 X pins 1\nnet N T0/-1",             // negative pin index
        "package 2\ncomponent T0 U1 X pins 1\nnet N T0/0 X/5",          // unknown key, past the carried package
        "package 2\ncomponent T0 U1 X pins 1\nnet N T0/0 X/-1",         // unknown key, negative pin index
    };
    for (const char* program : programs) {
        Board board(program);
        EXPECT_DEATH(board.write(), "^$") << program;
    }
}

#if !defined(_WIN32)
// A disk that fills up after any number of bytes, here a file size limit:
// the write fails and leaves no file, never one that stops in the middle.
// The board spans several of the writer's 64 KiB buffers.
TEST(NetlistWriterTest, WriteThatFailsAnywhereLeavesNoFile) {
    std::string program = "package 4\n";
    for (int i = 0; i < 3000; ++i) {
        const std::string n = std::to_string(i);
        program += "component T" + n + " U" + n + " TYPE_" + n + " value=10k pins 1 2 3 4\n";
        program += "net NET_" + n + " T" + n + "/0 T" + n + "/3\n";
    }
    Board board(program);
    ASSERT_TRUE(board.write());
    const std::string whole = testsupport::readFile(board.path());
    ASSERT_GT(whole.size(), 3u * 65536);

    struct sigaction ignore {}, previous {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &ignore, &previous);  // a write past the limit fails instead
    rlimit unlimited{};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    std::vector<std::size_t> limits = {0, 1, 4095, 65535, 65536, 65537, whole.size() - 1, whole.size()};
    for (std::size_t limit = 1000; limit < whole.size(); limit += whole.size() / 23) limits.push_back(limit);
    for (const std::size_t limit : limits) {
        rlimit small = unlimited;
        small.rlim_cur = limit;
        setrlimit(RLIMIT_FSIZE, &small);
        const bool written = board.write();
        setrlimit(RLIMIT_FSIZE, &unlimited);
        if (limit >= whole.size()) {
            EXPECT_TRUE(written);
            EXPECT_EQ(testsupport::readFile(board.path()), whole);
        } else {
            EXPECT_FALSE(written) << "limit " << limit;
            EXPECT_FALSE(testsupport::pathExists(board.path())) << "limit " << limit;
        }
    }
    sigaction(SIGXFSZ, &previous, nullptr);
}
#endif

TEST(StripPinPrefixTest, JudgesByLengthsAlone) {
    const struct { const char* refdes; const char* pinText; const char* result; } cases[] = {
        {"U1", "U1-3", "3"}, {"U1", "XY-3", "3"},    {"U1", "U1", nullptr},    {"U1", "U13", nullptr},
        {"U1", "U1-", ""},   {"AB", "X--5", "-5"},   {"", "-7", "7"},          {"", "", nullptr},
        {"U10", "U1", nullptr}, {"U1", "-1-2", "1-2"}, {"U1", "U1-2-3", "2-3"},
    };
    for (const auto& c : cases) {
        const char* result = stripPinPrefix(std::strlen(c.refdes), c.pinText);
        EXPECT_EQ(std::string(result ? result : "<none>"), c.result ? c.result : "<none>") << c.pinText;
    }
}

// White space becomes "_" first; then only NETLIST and PART_LIST, in any
// case, are reserved. The caller's text holds the name as written.
TEST(NetlistWriterTest, DesignNameIsMadeSafeAndReservedNamesArePrefixed) {
    const std::pair<const char*, const char*> cases[] = {
        {"netlist", "Vrn_netlist"}, {"part list", "Vrn_part_list"}, {"net list", "net_list"}, {"NETLIST2", "NETLIST2"},
        {"a\tb\nc\vd\fe\rf", "a_b_c_d_e_f"}, {" NETLIST", "_NETLIST"}, {"\xA0x", "\xA0x"}, {"", ""},
    };
    testsupport::ScratchDir scratch;
    const std::string path = scratch / "named.vrn";
    for (const auto& [input, output] : cases) {
        Design design;
        TextString name(input);
        EXPECT_TRUE(design.writeNetlistFile(path.c_str(), name)) << input;
        EXPECT_STREQ(name.text(), output) << input;
        const std::string designLine = testsupport::asWrittenText("DESIGN\t" + std::string(output) + "\n\n");
        EXPECT_EQ(testsupport::readFile(path).rfind(designLine, 0), 0u) << input;
    }
    // A file that can't be opened: false, and nothing changed or made.
    Design design;
    TextString name("part list");
    EXPECT_FALSE(design.writeNetlistFile((scratch / "missing/out.vrn").c_str(), name));
    EXPECT_STREQ(name.text(), "part list");
    EXPECT_FALSE(testsupport::pathExists(scratch / "missing"));
}

}  // namespace
