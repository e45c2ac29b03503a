#include "job_layout.h"

#include "catalogue.h"

const std::vector<Layer>& jobLayers() {
    static const std::vector<Layer> layers = {
        {"comp_+_top", "COMPONENT", LayerUse::Components, 'T'},
        {"top_silk", "SILK_SCREEN", LayerUse::Silk, 'T'},
        {"top_mask", "SOLDER_MASK", LayerUse::Mask, 'T'},
        {"top", "SIGNAL", LayerUse::Copper, 'T'},
        {"dielectric_1", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"gnd_plane", "POWER_GROUND", LayerUse::Plane, 0},
        {"dielectric_2", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"in1", "SIGNAL", LayerUse::Copper, 0},
        {"dielectric_3", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"in2", "SIGNAL", LayerUse::Copper, 0},
        {"dielectric_4", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"pwr_plane", "POWER_GROUND", LayerUse::Plane, 0},
        {"dielectric_5", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"in3", "SIGNAL", LayerUse::Copper, 0},
        {"dielectric_6", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"in4", "MIXED", LayerUse::Copper, 0},
        {"dielectric_7", "DIELECTRIC", LayerUse::Dielectric, 0},
        {"bottom", "SIGNAL", LayerUse::Copper, 'B'},
        {"bottom_mask", "SOLDER_MASK", LayerUse::Mask, 'B'},
        {"bottom_silk", "SILK_SCREEN", LayerUse::Silk, 'B'},
        {"comp_+_bot", "COMPONENT", LayerUse::Components, 'B'},
        {"drill_top-bottom", "DRILL", LayerUse::Drill, 0},
        {"assembly_top", "DOCUMENT", LayerUse::Document, 'T'},
        {"assembly_bottom", "DOCUMENT", LayerUse::Document, 'B'},
    };
    return layers;
}

const std::vector<const char*>& edaLayers() {
    static const std::vector<const char*> names = {"top",
                                                   "in1",
                                                   "in2",
                                                   "in3",
                                                   "in4",
                                                   "bottom",
                                                   "gnd_plane",
                                                   "pwr_plane",
                                                   "top_mask",
                                                   "bottom_mask",
                                                   "drill_top-bottom"};
    return names;
}

Point padPosition(const Board& board, const Component& c, std::int32_t pinIndex) {
    const Package& package = board.packages[static_cast<std::size_t>(c.package)];
    const Footprint& footprint = footprints()[static_cast<std::size_t>(package.footprint)];
    const std::int32_t count = static_cast<std::int32_t>(package.pinNames.size());
    const std::int64_t pitch = footprint.pitch;
    if (footprint.naming == PinNaming::Grid) {
        std::int32_t columns = 1;
        while (columns * columns < count) ++columns;
        return {c.x + (pinIndex % columns - columns / 2) * pitch, c.y + (pinIndex / columns - columns / 2) * pitch};
    }
    if (count <= 2) return {c.x + (pinIndex == 0 ? -pitch / 2 : pitch / 2), c.y};
    const std::int32_t perRow = (count + 1) / 2;
    const std::int64_t row = pinIndex < perRow ? -1 : 1;
    return {c.x + row * pitch * 2, c.y + (pinIndex % perRow - perRow / 2) * pitch};
}
