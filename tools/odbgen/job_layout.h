// The layout of a generated job: its layers in matrix order, the signal
// layers that eda/data lists (its FID records count in that list), and where
// each pad of a component lies.
#pragma once

#include <cstdint>
#include <vector>

#include "board.h"

// What a layer's features file is filled with.
enum class LayerUse { Components, Copper, Plane, Mask, Silk, Drill, Document, Dielectric };

struct Layer {
    const char* name;  // folder name; the matrix gives it in upper case
    const char* type;  // the matrix TYPE
    LayerUse use;
    char side;  // 'T', 'B', or 0 for inner and through layers
};

const std::vector<Layer>& jobLayers();

// Layers named by eda/data's LYR record, in that order; a FID record gives
// its layer as an index into this list.
const std::vector<const char*>& edaLayers();

struct Point {
    std::int64_t x;
    std::int64_t y;
};

// Where pad `pinIndex` of component c lies: pads in two rows, or a grid for
// balls; rotation is not applied (nothing reads it back).
Point padPosition(const Board& board, const Component& c, std::int32_t pinIndex);
