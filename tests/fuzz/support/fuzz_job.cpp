#include "support/fuzz_job.h"

#include "design/design.h"
#include "odb/job_reader.h"
#include "support/netlist_oracle.h"
#include "support/run_arena.h"
#include "support/workspace.h"

namespace fuzzing {

namespace {

// The step is named as its folder, as some exporters write it, so that the
// file targets spend no time on the case-blind lookup; the matrix target's
// seeds name it in upper case.
const char kMatrix[] =
    "STEP {\n"
    "    COL=1\n"
    "    NAME=pcb\n"
    "}\n"
    "\n"
    "LAYER {\n"
    "    ROW=1\n"
    "    CONTEXT=BOARD\n"
    "    TYPE=COMPONENT\n"
    "    NAME=COMP_+_TOP\n"
    "    POLARITY=POSITIVE\n"
    "}\n"
    "\n"
    "LAYER {\n"
    "    ROW=2\n"
    "    CONTEXT=BOARD\n"
    "    TYPE=SIGNAL\n"
    "    NAME=TOP\n"
    "}\n"
    "\n"
    "LAYER {\n"
    "    ROW=3\n"
    "    CONTEXT=BOARD\n"
    "    TYPE=COMPONENT\n"
    "    NAME=COMP_+_BOT\n"
    "}\n";

// Packages 0 (two pins) and 1 (eight pins); nets on both sides.
const char kEdaData[] =
    "# 2024-05-02T10:11:12\n"
    "HDR test exporter\n"
    "UNITS=MM\n"
    "LYR top bottom comp_+_top comp_+_bot\n"
    "#\n"
    "#Net attribute names\n"
    "#\n"
    "@0 .critical_net\n"
    "&0 none\n"
    "# NET 0\n"
    "NET $NONE$\n"
    "SNT TOP T 0 1\n"
    "NET GND ;;ID=1\n"
    "SNT TOP T 0 1\n"
    "FID C 1 0\n"
    "SNT TOP T 2 3\n"
    "SNT TOP B 0 1\n"
    "SNT TRC\n"
    "FID C 1 1\n"
    "NET VCC;;ID=2\n"
    "SNT TOP T 2 7\n"
    "SNT TOP B 1 0\n"
    "SNT TOP T 1 0\n"
    "SNT VIA\n"
    "NET CLK_A\n"
    "SNT TOP T 2 0\n"
    "SNT TOP T 0 0\n"
    "NET /SHEET1/DATA 2\n"
    "SNT TOP T 1 1\n"
    "SNT TOP B 0 0\n"
    "SNT TOP B 1 1\n"
    "NET NC_7\n"
    "# PKG 0\n"
    "PKG R_0603 1.5 -0.8 -0.4 0.8 0.4\n"
    "RC -0.8 -0.4 1.6 0.8\n"
    "PIN 1 S -0.75 0 0 E S\n"
    "RC -1.1 -0.4 0.7 0.8\n"
    "PIN 2 S 0.75 0 0 E S ID=3\n"
    "PKG SOIC-8 1.27 -3.55 -2.45 3.55 2.45;\n"
    "CT\n"
    "OB -1.95 -2.45 I\n"
    "OS 1.95 -2.45\n"
    "OE\n"
    "CE\n"
    "PIN 1 S -2.7 1.905 0 E S\n"
    "PIN 2 S -2.7 0.635 0 E S\n"
    "PIN 3 S -2.7 -0.635 0 E S\n"
    "PIN 4 S -2.7 -1.905 0 E S\n"
    "PIN 5 S 2.7 -1.905 0 E S\n"
    "PIN 6 S 2.7 -0.635 0 E S\n"
    "PIN 7 S 2.7 0.635 0 E S\n"
    "PIN 8 S 2.7 1.905 0 E S\n";

const char kTopComponents[] =
    "UNITS=MM\n"
    "#\n"
    "#Component attribute names\n"
    "#\n"
    "@0 .comp_mount_type\n"
    "\n"
    "# CMP 0\n"
    "CMP 0 10.0 20.0 0.0 N R1 RC0603FR-0710KL ;0=0\n"
    "PRP VALUE '10 K'\n"
    "PRP PART_NAME RC0603\n"
    "TOP 0 9.25 20.0 0.0 N 1 0 1\n"
    "TOP 1 10.75 20.0 0.0 N 4 0 2\n"
    "# CMP 1\n"
    "CMP 0 12.0 20.0 90.0 N R2 ???\n"
    "PRP MANUFACTURER_PART_NO. ERJ-3EKF1001V\n"
    "TOP 0 12.0 19.25 90.0 N 2 0 R2-1\n"
    "TOP 1 12.0 20.75 90.0 N 4 0 R2-2\n"
    "# CMP 2\n"
    "CMP 1 30.0 25.0 270.0 N U1 74HC00;1=2\n"
    "PRP Description 'Quad NAND'\n"
    "TOP 0 28.0 27.0 270.0 N 3 0 U1-1\n"
    "TOP 1 28.0 26.0 270.0 N 4 0 U1-2\n"
    "TOP 2 28.0 25.0 270.0 N 0 0 U1-3\n"
    "TOP 3 28.0 24.0 270.0 N 1 1 U1-4\n"
    "TOP 4 32.0 24.0 270.0 N 0 1 U1-5\n"
    "TOP 5 32.0 25.0 270.0 N 0 2 U1-6\n"
    "TOP 6 32.0 26.0 270.0 N 0 3 U1-7\n"
    "TOP 7 32.0 27.0 270.0 N 2 1 U1-8\n";

// R1 is taken on the top side already: the reader renames it.
const char kBottomComponents[] =
    "UNITS=MM\r\n"
    "# CMP 0\r\n"
    "CMP 0 5.0 5.0 180.0 M C1 GRM188R71C104KA01D\r\n"
    "PRP VALUE 100NF;x\r\n"
    "TOP 0 5.75 5.0 180.0 M 1 2 1\r\n"
    "TOP 1 4.25 5.0 180.0 M 4 1 2\r\n"
    "CMP 0 8.0 5.0 0.0 M R1 ???\r\n"
    "PRP VALUE 4K7\r\n"
    "TOP 0 8.75 5.0 0.0 M 2 2 1\r\n"
    "TOP 1 7.25 5.0 0.0 M 4 2 2\r\n";

}  // namespace

std::string jobRoot() { return workspace() + "/job"; }
std::string matrixPath() { return jobRoot() + "/matrix/matrix"; }
std::string edaDataPath() { return jobRoot() + "/steps/pcb/eda/data"; }
std::string componentsPath(const char* layer) { return jobRoot() + "/steps/pcb/layers/" + layer + "/components"; }

void convertJob() {
    {
        Design design;
        JobReader reader(TextString(jobRoot().c_str()), TextString("job"), design);
        // Every result leads to the write, as in a run: a failed read keeps
        // what it has added.
        reader.readJob();
        writeAndCheck(design, "job");
    }
    releaseRunObjects();
}

void setUpJobTarget() {
    silenceStandardOutput();
    setStandardInput("");
    writeFile(matrixPath(), kMatrix);
    writeFile(edaDataPath(), kEdaData);
    writeFile(componentsPath("comp_+_top"), kTopComponents);
    writeFile(componentsPath("comp_+_bot"), kBottomComponents);
}

}  // namespace fuzzing
