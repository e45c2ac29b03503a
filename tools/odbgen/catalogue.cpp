#include "catalogue.h"

namespace {

// Footprint lengths are kept in tenths of a micrometre, as all board lengths.
constexpr int um(int micrometres) { return micrometres * 10; }

}  // namespace

const std::vector<Footprint>& footprints() {
    // name, numbered pins, naming, further names, pad width and height, pitch,
    // through hole. The comment is the index that ComponentKind refers to.
    // clang-format off
    static const std::vector<Footprint> table = {
        {"R0201", 2, PinNaming::Numbers, {}, um(300), um(300), um(500), false},  // 0
        {"R0402", 2, PinNaming::Numbers, {}, um(600), um(500), um(1000), false},  // 1
        {"R0603", 2, PinNaming::Numbers, {}, um(800), um(900), um(1600), false},  // 2
        {"R0805", 2, PinNaming::Numbers, {}, um(1000), um(1300), um(1900), false},  // 3
        {"R1206", 2, PinNaming::Numbers, {}, um(1100), um(1700), um(2900), false},  // 4
        {"C0201", 2, PinNaming::Numbers, {}, um(300), um(300), um(500), false},  // 5
        {"C0402", 2, PinNaming::Numbers, {}, um(600), um(500), um(1000), false},  // 6
        {"C0603", 2, PinNaming::Numbers, {}, um(800), um(900), um(1600), false},  // 7
        {"C0805", 2, PinNaming::Numbers, {}, um(1000), um(1300), um(1900), false},  // 8
        {"C1210", 2, PinNaming::Numbers, {}, um(1100), um(2700), um(2900), false},  // 9
        {"CAPAE_6.3x5.4", 0, PinNaming::Listed, {"+", "-"}, um(1600), um(2200), um(5400), false},  // 10
        {"L_1210", 2, PinNaming::Numbers, {}, um(1100), um(2700), um(2900), false},  // 11
        {"IND_4.0x4.0", 2, PinNaming::Numbers, {}, um(1500), um(3700), um(3300), false},  // 12
        {"SOD-123", 0, PinNaming::Listed, {"A", "K"}, um(900), um(1200), um(3300), false},  // 13
        {"LED_0603", 0, PinNaming::Listed, {"A", "K"}, um(800), um(800), um(1600), false},  // 14
        {"SOT-23", 3, PinNaming::Numbers, {}, um(900), um(800), um(950), false},  // 15
        {"SOT-23-5", 5, PinNaming::Numbers, {}, um(1100), um(600), um(950), false},  // 16
        {"SOT-223", 3, PinNaming::Numbers, {"2"}, um(1500), um(2000), um(2300), false},  // 17
        {"SO-8_PowerPAK", 0, PinNaming::Listed, {"S", "S", "S", "G", "D", "D", "D", "D"},
         um(600), um(1000), um(1270), false},  // 18
        {"SOIC-8_3.9x4.9mm_P1.27mm", 8, PinNaming::Numbers, {}, um(600), um(1500), um(1270), false},  // 19
        {"SOIC-14_3.9x8.7mm_P1.27mm", 14, PinNaming::Numbers, {}, um(600), um(1500), um(1270), false},  // 20
        {"SOIC-16W_7.5x10.3mm_P1.27mm", 16, PinNaming::Numbers, {}, um(600), um(2000), um(1270), false},  // 21
        {"TSSOP-20_4.4x6.5mm_P0.65mm", 20, PinNaming::Numbers, {}, um(400), um(1500), um(650), false},  // 22
        {"TSSOP-28_4.4x9.7mm_P0.65mm", 28, PinNaming::Numbers, {}, um(400), um(1500), um(650), false},  // 23
        {"QFN-16-1EP_3x3mm_P0.5mm", 16, PinNaming::Numbers, {"17"}, um(300), um(800), um(500), false},  // 24
        {"QFN-32-1EP_5x5mm_P0.5mm", 32, PinNaming::Numbers, {"33", "33", "33", "33"},
         um(300), um(800), um(500), false},  // 25
        {"QFN-48-1EP_7x7mm_P0.5mm", 48, PinNaming::Numbers, {"49", "49", "49", "49", "49", "49", "49", "49", "49"},
         um(300), um(800), um(500), false},  // 26
        {"LQFP-64_10x10mm_P0.5mm", 64, PinNaming::Numbers, {}, um(300), um(1500), um(500), false},  // 27
        {"LQFP-100_14x14mm_P0.5mm", 100, PinNaming::Numbers, {}, um(300), um(1500), um(500), false},  // 28
        {"LQFP-144_20x20mm_P0.5mm", 144, PinNaming::Numbers, {}, um(300), um(1500), um(500), false},  // 29
        {"BGA-96_9x13mm_P0.8mm", 96, PinNaming::Grid, {}, um(400), um(400), um(800), false},  // 30
        {"BGA-256_17x17mm_P1.0mm", 256, PinNaming::Grid, {}, um(500), um(500), um(1000), false},  // 31
        {"BGA-484_23x23mm_P1.0mm", 484, PinNaming::Grid, {}, um(500), um(500), um(1000), false},  // 32
        {"FCBGA-676_27x27mm_P1.0mm", 676, PinNaming::Grid, {}, um(500), um(500), um(1000), false},  // 33
        {"FCBGA-1000_33x33mm_P1.0mm", 1000, PinNaming::Grid, {}, um(500), um(500), um(1000), false},  // 34
        {"PinHeader_1x02_P2.54mm", 2, PinNaming::Numbers, {}, um(1700), um(1700), um(2540), true},  // 35
        {"PinHeader_1x04_P2.54mm", 4, PinNaming::Numbers, {}, um(1700), um(1700), um(2540), true},  // 36
        {"PinHeader_2x05_P2.54mm", 10, PinNaming::Numbers, {}, um(1700), um(1700), um(2540), true},  // 37
        {"PinHeader_2x20_P2.54mm", 40, PinNaming::Numbers, {}, um(1700), um(1700), um(2540), true},  // 38
        {"USB_C_Receptacle", 12, PinNaming::TwoRows, {"SH", "SH", "SH", "SH"},
         um(300), um(1100), um(500), false},  // 39
        {"RJ45_MagJack", 8, PinNaming::Numbers, {"SH", "SH", "L1", "L2", "L3", "L4"},
         um(1500), um(1500), um(1270), true},  // 40
        {"PCIe_x16_Edge", 82, PinNaming::TwoRows, {}, um(700), um(4200), um(1000), false},  // 41
        {"DIMM_DDR4_288", 288, PinNaming::Numbers, {}, um(600), um(2500), um(850), false},  // 42
        {"Crystal_3225", 4, PinNaming::Numbers, {}, um(1400), um(1200), um(2200), false},  // 43
        {"TestPoint_Pad_D1.0mm", 1, PinNaming::Numbers, {}, um(1000), um(1000), um(1000), false},  // 44
        {"Fiducial_1mm_Mask2mm", 1, PinNaming::Numbers, {}, um(1000), um(1000), um(1000), false},  // 45
        {"MountingHole_3.2mm_M3_Pad", 1, PinNaming::Numbers, {}, um(6000), um(6000), um(1000), true},  // 46
        {"Logo_OSHW_10mm", 0, PinNaming::Listed, {}, um(1000), um(1000), um(1000), false},  // 47
        {"SW_PUSH_6mm", 0, PinNaming::Listed, {"1", "2", "1", "2"}, um(2000), um(1500), um(6500), true},  // 48
        {"R_Array_Convex_4x0402", 8, PinNaming::Numbers, {}, um(500), um(400), um(500), false},  // 49
    };
    // clang-format on
    return table;
}

const std::vector<ComponentKind>& componentKinds() {
    // prefix, weight, footprints with weights, top side per mille, values or
    // device names, part name prefix, pins that may stay open.
    // clang-format off
    static const std::vector<ComponentKind> table = {
        {"R", 3300, {{0, 5}, {1, 50}, {2, 25}, {3, 10}, {4, 5}, {49, 5}}, 500,
         {"0R", "10R", "22R", "33R", "49R9", "100R", "220R", "330R", "1K", "2K2", "4K7", "10K", "22K", "47K",
          "100K", "1M"},
         "RES", false},
        {"C", 3700, {{5, 8}, {6, 55}, {7, 20}, {8, 8}, {9, 4}, {10, 5}}, 500,
         {"10pF", "22pF", "100pF", "1nF", "10nF", "100nF", "1uF", "4.7uF", "10uF", "22uF", "100uF"},
         "CAP", false},
        {"L", 150, {{11, 60}, {12, 40}}, 700, {"100nH", "1uH", "2.2uH", "4.7uH", "10uH"}, "IND", false},
        {"FB", 120, {{2, 100}}, 600, {"120R@100MHz", "600R@100MHz"}, "FERRITE", false},
        {"D", 300, {{13, 50}, {14, 40}, {15, 10}}, 700,
         {"BAT54", "1N4148W", "SMBJ5.0A", "LED_GREEN", "LED_RED"}, "DIODE", false},
        {"Q", 250, {{15, 60}, {17, 20}, {18, 20}}, 800,
         {"BSS138", "2N7002", "SI2301", "BSC0902NS", "MMBT3904"}, "", false},
        {"U", 700,
         {{16, 200}, {19, 200}, {20, 80}, {21, 80}, {22, 80}, {23, 50}, {24, 80}, {25, 70}, {26, 50}, {27, 30},
          {28, 20}, {29, 15}, {30, 20}, {31, 12}, {32, 6}, {33, 4}, {34, 3}},
         900,
         {"TLV70033DDC", "SN74LVC1G08", "LM358", "W25Q128JV", "PCA9548A", "TPS62130", "LAN8742A", "STM32F407VG",
          "MT40A512M16", "XC7K325T", "ADS1256", "TCA9555", "INA226", "MAX3232", "SI5341"},
         "", true},
        {"J", 180, {{35, 25}, {36, 25}, {37, 20}, {38, 15}, {39, 6}, {40, 5}, {41, 2}, {42, 2}}, 950,
         {"HDR", "USB_C", "RJ45", "PCIE_X16", "DIMM_DDR4"}, "CONN", true},
        {"Y", 50, {{43, 100}}, 900, {"25MHz", "24MHz", "32.768kHz", "100MHz"}, "XTAL", false},
        {"SW", 30, {{48, 100}}, 900, {"SW_PUSH"}, "", false},
        {"TP", 150, {{44, 100}}, 300, {"TESTPOINT"}, "", false},
        {"FID", 40, {{45, 100}}, 500, {"FIDUCIAL"}, "", false},
        {"MH", 20, {{46, 100}}, 1000, {"MOUNTING_HOLE_M3"}, "", false},
        {"LOGO", 5, {{47, 100}}, 1000, {"LOGO"}, "", false},
    };
    // clang-format on
    return table;
}

std::vector<std::string> pinNamesOf(const Footprint& footprint) {
    std::vector<std::string> names;
    switch (footprint.naming) {
        case PinNaming::Numbers:
            for (int i = 1; i <= footprint.numberedPins; ++i) names.push_back(std::to_string(i));
            break;
        case PinNaming::Grid: {
            // JEDEC ball rows: letters without I O Q S X Z, then AA, AB ...
            static const char kRows[] = "ABCDEFGHJKLMNPRTUVWY";
            constexpr int kRowLetters = sizeof(kRows) - 1;
            int columns = 1;
            while (columns * columns < footprint.numberedPins) ++columns;
            for (int i = 0; i < footprint.numberedPins; ++i) {
                const int row = i / columns;
                std::string name;
                if (row >= kRowLetters) name += kRows[row / kRowLetters - 1];
                name += kRows[row % kRowLetters];
                names.push_back(name + std::to_string(i % columns + 1));
            }
            break;
        }
        case PinNaming::TwoRows:
            for (char row : {'A', 'B'}) {
                for (int i = 1; i <= footprint.numberedPins; ++i) names.push_back(row + std::to_string(i));
            }
            break;
        case PinNaming::Listed: break;
    }
    for (const char* name : footprint.names) names.push_back(name);
    return names;
}
