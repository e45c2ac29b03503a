// readComponents: the components, properties and pins one file gives, the
// console lines it prints (rename warnings, the count) and which records
// end a read.
#include <gtest/gtest.h>

#include <string>

#include "design/design.h"
#include "odb/job_reader.h"
#include "odb/reader_test_support.h"
#include "support/test_support.h"

namespace {

struct ComponentsCase {
    const char* name;
    const char* file;
    std::int32_t result;
    std::string components;
    const char* console;
};

// The dump of a component without properties or pins.
std::string plain(const char* key, const char* refdes, const char* type) {
    return std::string("component ") + key + " " + refdes + " type=" + type + " package=0 value= part= mpn=\n";
}

const ComponentsCase kComponentsCases[] = {
    {"records",
     "#\n"
     "@0 .comp_mount_type\n"
     "# CMP 0\n"
     "CMP 3 1.5 -2.25 90 M R1 RC0603;0=1\n"
     "PRP VALUE 100NF;x\n"
     "PRP PART_NAME 100NF;x\n"
     "PRP MANUFACTURER_PART_NO. ABC-1\n"
     "TOP 0 1.4 -2.25 90 M 5 0 R1-1\n"
     "TOP 1 1.6 -2.25 90 M 6 1 2 ID=3\n"
     "CMP 0 0 0 0 N U7 ;0=1\n",
     0,
     "component T0 R1 type=RC0603 package=3 value=100NF part=100NF;x mpn=ABC-1\n"
     "  pin DUMMY 0 net=5 text=R1-1\n"
     "  pin DUMMY 1 net=6 text=2\n" +
         plain("T1", "U7", ""),
     "Number of component(s), T - layer:2\n"},
    // Without its closing quote a value ends at the line end, LF or CR LF.
    {"quoted values",
     "CMP 0 0 0 0 N R1 X\n"
     "PRP VALUE '10 K'\n"
     "PRP PART_NAME 'a b' 'c'\n"
     "PRP MANUFACTURER_PART_NO. ''\n"
     "CMP 0 0 0 0 N R2 X\n"
     "PRP VALUE '4\t7 k\n"
     "PRP PART_NAME 'x y\r\n",
     0,
     "component T0 R1 type=X package=0 value=10_K part=a_b mpn=\n"
     "component T1 R2 type=X package=0 value=4_7_k part=x_y mpn=\n",
     "Number of component(s), T - layer:2\n"},
    {"property names keep their case and need a component",
     "PRP VALUE 1K\n"
     "CMP 0 0 0 0 N R1 X\n"
     "PRP value 2K\n"
     "PRP Part_Name P\n"
     "PRP OTHER 5K\n"
     "PRP VALUE 3K\n"
     "PRP VALUE 4K\n",
     0, "component T0 R1 type=X package=0 value=4K part= mpn=\n", "Number of component(s), T - layer:1\n"},
    // The value area keeps what the last record left in it, already cut.
    {"a property without a value word",
     "CMP 0 0 0 0 N R1 X\n"
     "PRP PART_NAME\n"
     "PRP VALUE 10K;a\n"
     "CMP 0 0 0 0 N R2 Y\n"
     "PRP PART_NAME\n"
     "PRP MANUFACTURER_PART_NO.\n",
     0,
     "component T0 R1 type=X package=0 value=10K part= mpn=\n"
     "component T1 R2 type=Y package=0 value= part=10K mpn=10K\n",
     "Number of component(s), T - layer:2\n"},
    {"reference names stay unique",
     "CMP 0 0 0 0 N R1 A\n"
     "CMP 0 0 0 0 N r1 B\n"
     "CMP 0 0 0 0 N R1_ C\n"
     "CMP 0 0 0 0 N R1 D\n"
     "# the line counter counts this line too\n"
     "CMP 0 0 0 0 N R1 E\n",
     0,
     plain("T0", "R1", "A") + plain("T1", "r1", "B") + plain("T2", "R1_", "C") + plain("T3", "R1__", "D") +
         plain("T4", "R1___", "E"),
     "Warning: Component with name R1 already found at line 5, renaming to R1__\n"
     "Warning: Component with name R1 already found at line 7, renaming to R1___\n"
     "Number of component(s), T - layer:5\n"},
    {"lines passed over",
     "   \n"
     "FOO 1\n"
     "   \n"
     "CMPCMPCMPCMPCMPCMP 0 0 0 0 N R9 X\n"
     "TOPTOPTOPTOPTOPTOP 0 0 0 0 N 1 0 1\n"
     "cmp 0 0 0 0 N R8 X\n"
     "CMP 0 0 0 0 N R1 X\n"
     "PRP VALUE 'a b'\n"
     "   \n",
     0, "component T0 R1 type=X package=0 value=a_b part= mpn=\n", "Number of component(s), T - layer:1\n"},
    {"empty file", "", 0, "", "Number of component(s), T - layer:0\n"},
    {"skipped lines only", "#\n@0 .comp_mount_type\n\n\r\n", 0, "", "Number of component(s), T - layer:0\n"},
    {"CMP with six fields", "CMP 0 0 0 0 N R1 X\nCMP 0 1 2 0 N R2\nCMP 0 0 0 0 N R3 X\n", 1, plain("T0", "R1", "X"),
     ""},
    {"CMP with a word for a number", "CMP 0 x 0 0 N R1 X\n", 1, "", ""},
    {"TOP before the first CMP", "TOP 0 0 0 0 N 1 0 1\nCMP 0 0 0 0 N R1 X\n", 1, "", ""},
    {"TOP with seven fields", "CMP 0 0 0 0 N R1 X\nTOP 0 0 0 0 N 1 0\n", 1, plain("T0", "R1", "X"), ""},
    {"blank line after CMP", "CMP 0 0 0 0 N R1 X\n   \n", 1, plain("T0", "R1", "X"), ""},
    {"blank line after TOP", "CMP 0 0 0 0 N R1 X\nTOP 0 0 0 0 N 1 0 P\n \n", 1,
     plain("T0", "R1", "X") + "  pin DUMMY 0 net=1 text=P\n", ""},
};

class ComponentsReaderTest : public testing::Test {
protected:
    // Reads layers/<layer>/components of step "s" and returns its console.
    std::string read(const char* layer, std::int32_t* result) {
        return odbtest::consoleOf([&] { *result = reader.readComponents(TextString(layer)); });
    }
    void writeLayer(const char* layer, const char* contents) {
        odbtest::writeJobFile(scratch.path(), std::string("steps/s/layers/") + layer + "/components", contents);
    }

    testsupport::ScratchDir scratch;
    Design design;
    JobReader reader{TextString(scratch.path().c_str()), TextString("job"), design};

    void SetUp() override { reader.stepName.assign("s"); }
};

TEST(ComponentsReaderCasesTest, RecordsFillComponents) {
    for (const ComponentsCase& c : kComponentsCases) {
        SCOPED_TRACE(c.name);
        testsupport::ScratchDir scratch;
        odbtest::writeJobFile(scratch.path(), "steps/s/layers/comp_+_top/components", c.file);
        Design design;
        JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
        reader.stepName.assign("s");
        std::int32_t result = -1;
        EXPECT_EQ(odbtest::consoleOf([&] { result = reader.readComponents(TextString("comp_+_top")); }), c.console);
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(odbtest::dumpComponents(design), c.components);
        EXPECT_EQ(design.nets.itemCount() + design.packages.itemCount(), 0);
    }
}

// Keys restart per file with the side letter; reference names stay unique
// across files; each read starts with empty areas and no component.
TEST_F(ComponentsReaderTest, EachFileIsASideOfItsOwn) {
    writeLayer("comp_+_top", "CMP 0 0 0 0 N R1 X\nPRP VALUE 5K\nCMP 0 0 0 0 N R2 X\n");
    writeLayer("comp_+_bot", "CMP 1 0 0 0 M R2 Y\nPRP VALUE\n#\nCMP 1 0 0 0 M R1 Z\n");
    writeLayer("extra", "TOP 0 0 0 0 N 1 0 1\n");
    std::int32_t result = -1;
    EXPECT_EQ(read("comp_+_top", &result), "Number of component(s), T - layer:2\n");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(read("comp_+_bot", &result),
              "Warning: Component with name R2 already found at line 2, renaming to R2_\n"
              "Warning: Component with name R1 already found at line 5, renaming to R1_\n"
              "Number of component(s), B - layer:2\n");
    EXPECT_EQ(result, 0);
    // Only the exact layer name "comp_+_top" gives "T"; the file is found
    // all the same.
    EXPECT_EQ(read("COMP_+_TOP", &result),
              "Warning: Component with name R1 already found at line 2, renaming to R1__\n"
              "Warning: Component with name R2 already found at line 4, renaming to R2__\n"
              "Number of component(s), B - layer:2\n");
    EXPECT_EQ(read("extra", &result), "");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(read("missing", &result), "");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(odbtest::dumpComponents(design),
              "component T0 R1 type=X package=0 value=5K part= mpn=\n"
              "component T1 R2 type=X package=0 value= part= mpn=\n"
              "component B0 R2_ type=Y package=1 value= part= mpn=\n"
              "component B1 R1_ type=Z package=1 value= part= mpn=\n"
              "component B0 R1__ type=X package=0 value=5K part= mpn=\n"
              "component B1 R2__ type=X package=0 value= part= mpn=\n");
}

}  // namespace
