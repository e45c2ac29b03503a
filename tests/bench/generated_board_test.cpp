// The converter's readers and writer on a generated board of 5000
// components, with LF and with CR LF line ends: what is read is the
// generator's board (every net with its pins in record order, every
// component with its key, refdes and pin texts), and the VRN file is the
// plain reference writer's, byte for byte, the same for both line ends.
#include <gtest/gtest.h>

#include <string>

#include "design/design.h"
#include "generated_job.h"
#include "odb/job_reader.h"
#include "support/reference_writer.h"
#include "support/test_support.h"

namespace {

// What was read, in the form of writeGeneratedJob. A refdes the other side
// has already was read with "_" behind it, and is shown without.
std::string described(Design& design) {
    std::string text;
    for (const Net* net : design.nets) {
        text += std::string("net ") + net->text() + ":";
        for (const NetPin* pin : net->pins) text += " " + std::string(pin->key.text()) + "/" + std::to_string(pin->pinIndex);
        text += "\n";
    }
    for (const Part* part : design.components) {
        std::string refdes = part->refdes.text();
        refdes.erase(refdes.find_last_not_of('_') + 1);
        text += std::string("component ") + part->text() + " " + refdes + ":";
        for (const PartPin* pin : part->pins) text += " " + std::string(pin->pinText.text());
        text += "\n";
    }
    return text;
}

TEST(GeneratedBoardTest, ReadsAsGeneratedAndWritesAsTheReference) {
    std::string written[2];
    for (const int crlf : {0, 1}) {
        SCOPED_TRACE(crlf ? "CR LF" : "LF");
        testsupport::ScratchDir scratch;
        const std::string expected = writeGeneratedJob(scratch / "job", crlf != 0);
        ASSERT_FALSE(expected.empty());
        Design design;
        testing::internal::CaptureStdout();
        const std::int32_t result = JobReader(TextString((scratch / "job").c_str()), TextString("job"), design).readJob();
        const std::string console = testing::internal::GetCapturedStdout();
        EXPECT_EQ(result, 0);
        EXPECT_NE(console.find("Number of net(s):" + std::to_string(design.nets.itemCount()) + "\n"), std::string::npos);
        EXPECT_TRUE(described(design) == expected) << "the design read is not the generated board";

        const reference::Vrn vrn = reference::write(design, "bench_5k");
        ASSERT_FALSE(vrn.endsAbnormally);
        TextString name("bench_5k");
        testing::internal::CaptureStdout();
        EXPECT_TRUE(design.writeNetlistFile((scratch / "out.vrn").c_str(), name));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), vrn.console);
        written[crlf] = testsupport::readFile(scratch / "out.vrn");
        EXPECT_TRUE(written[crlf] == testsupport::asWrittenText(vrn.file)) << "the VRN file is not the reference's";
    }
    EXPECT_TRUE(written[0] == written[1]) << "LF and CR LF give different VRN files";
}

}  // namespace
