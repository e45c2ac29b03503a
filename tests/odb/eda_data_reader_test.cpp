// readEdaData: what each record leaves in the Design (nets with their
// connections, packages with their pin names) and which records end a read.
#include <gtest/gtest.h>

#include <string>

#include "design/design.h"
#include "odb/job_reader.h"
#include "odb/reader_test_support.h"
#include "support/test_support.h"

namespace {

struct EdaCase {
    const char* name;
    const char* data;
    std::int32_t result;
    const char* nets;
    const char* packages;
};

const EdaCase kEdaCases[] = {
    {"net names",
     "NET GND ;;ID=7\n"
     "NET SIG A ;;ID=8\n"
     "NET A B C\n"
     "NET Z\n"
     "NET $NONE$;;ID=4588\n"
     "NET $none$\n"
     "NET $NONE$ X\n"
     "NET $NONE$ ;ID=3\n"
     "NET VCC\r\n"
     "NET GND\n",
     0,
     "net 0 GND:\nnet 1 SIGA:\nnet 2 AB:\nnet 3 Z:\nnet 4 $NONE$;;ID=4588:\nnet 5 $NONE$X:\nnet 6 VCC:\nnet 7 GND:\n",
     ""},
    {"connections",
     "NET N1\n"
     "SNT TOP T 0 1\n"
     "SNT VIA\n"
     "FID C 1 2\n"
     "SNT TRC\n"
     "SNT PLN\n"
     "SNT TOP B 12 3\n"
     "SNT TOP T 0 1\n"
     "SNT TOP T12 3\n"
     "SNT TOP T 12 3\n"
     "SNT TOP T 0 2\n"
     "NET N2\n"
     "NET N3\n"
     "SNT TOP T 0 1\n",
     0, "net 0 N1: T0/1 B12/3 T12/3 T0/2\nnet 1 N2:\nnet 2 N3: T0/1\n", ""},
    {"connections need a current net",
     "SNT TOP T 0 0\n"
     "NET $NONE$\n"
     "SNT TOP T 1 0\n"
     "SNT\n"
     "PKG P 0 0 0 0 0\n"
     "SNT TOP T 2 0\n"
     "NET N\n"
     "PIN 1 S 0 0 0 U U\n"
     "SNT TOP T 3 0\n",
     0, "net 0 N:\n", "package 0 P: 1\n"},
    {"package pins stay unique",
     "PKG SOIC8 0.05 -0.1 -0.1 0.1 0.1\n"
     "PIN 1 S 0 0 0 U U\n"
     "PIN 1 S 0 0 0 U U\n"
     "PIN 1 S 0 0 0 U U\n"
     "PIN 2 S 0 0 0 U U\n"
     "PIN 1_ S 0 0 0 U U\n"
     "PKG R0603\n"
     "PIN A\n"
     "PIN a ID=5\n",
     0, "", "package 0 SOIC8: 1 1_ 1__ 2 1___\npackage 1 R0603: A a\n"},
    {"records passed over",
     "   \n"
     "HDR exporter\n"
     "LYR top bottom\n"
     "@0 .critical_net\n"
     "&0 yes\n"
     "PRP X 1\n"
     "  # NET B\n"
     "net C\n"
     "pkg D\n"
     "pin 1\n"
     "TOP 1\n"
     "NETNETNETNETNETNET E\n",
     0, "", ""},
    {"blanks before the first word, long kind words and blank lines after SNT",
     "  NET A\n"
     "\tSNT TOP T 0 0\n"
     "SNT TOPTOPTOPTOPTOPTOP T 1 0\n"
     "   \n"
     "SNT VIA\n"
     "   \n"
     "HDR\n"
     "   \n",
     0, "net 0 A: T0/0\n", ""},
    {"empty file", "", 0, "", ""},
    {"NET without a name", "NET A\nNET\nNET B\n", 1, "net 0 A:\n", ""},
    {"blank line after NET", "NET A\n   \nNET B\n", 1, "net 0 A:\n", ""},
    {"blank line after PKG", "PKG P\n \nPKG Q\n", 1, "", "package 0 P:\n"},
    {"blank line after PIN", "PKG P\nPIN 1\n \nPIN 2\n", 1, "", "package 0 P: 1\n"},
    {"SNT without a kind word", "NET A\nSNT TOP T 0 0\nSNT\nSNT TOP T 1 0\n", 1, "net 0 A: T0/0\n", ""},
    {"SNT TOP without its number", "NET A\nSNT TOP T 5\n", 1, "net 0 A:\n", ""},
    {"SNT TOP with a word for its number", "NET A\nSNT TOP T 5 x\n", 1, "net 0 A:\n", ""},
    {"PKG without a name", "PKG\n", 1, "", ""},
    {"PIN before any PKG", "NET A\nPIN 1\n", 1, "net 0 A:\n", ""},
    {"PIN without a name", "PKG P\nPIN\n", 1, "", "package 0 P:\n"},
};

TEST(EdaDataReaderTest, RecordsFillNetsAndPackages) {
    for (const EdaCase& c : kEdaCases) {
        SCOPED_TRACE(c.name);
        testsupport::ScratchDir scratch;
        odbtest::writeJobFile(scratch.path(), "steps/s/eda/data", c.data);
        Design design;
        JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
        reader.stepName.assign("s");
        std::int32_t result = -1;
        EXPECT_EQ(odbtest::consoleOf([&] { result = reader.readEdaData(); }), "");
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(odbtest::dumpNets(design), c.nets);
        EXPECT_EQ(odbtest::dumpPackages(design), c.packages);
        EXPECT_EQ(design.components.itemCount(), 0);
    }
}

TEST(EdaDataReaderTest, LongestNetNameCountsNetsMadeOnly) {
    testsupport::ScratchDir scratch;
    odbtest::writeJobFile(scratch.path(), "steps/s/eda/data", "NET AB\nNET $NONE$ ;ID=12345678\nNET ABCD ;x\nNET C\n");
    Design design;
    JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
    reader.stepName.assign("s");
    EXPECT_EQ(reader.readEdaData(), 0);
    EXPECT_EQ(design.longestNetName, 4);
}

TEST(EdaDataReaderTest, MissingFileLeavesTheDesignUntouched) {
    testsupport::ScratchDir scratch;
    odbtest::writeJobFile(scratch.path(), "steps/s/eda/data/x", "NET A\n");  // eda/data is a directory
    Design design;
    JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
    reader.stepName.assign("s");
    EXPECT_EQ(reader.readEdaData(), 1);
    reader.stepName.assign("t");
    EXPECT_EQ(reader.readEdaData(), 1);
    EXPECT_EQ(odbtest::dumpDesign(design), "longest net name 0\n");
}

}  // namespace
