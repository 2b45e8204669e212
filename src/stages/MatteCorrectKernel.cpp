#include "stages/MatteCorrectKernel.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace {

// Pixels of a line in a tile: what a tile reads stays in the second cache, and its pages, of which columns
// cross many, stay known to the processor.
constexpr std::ptrdiff_t kAlongRows = 1024;
constexpr std::ptrdiff_t kAlongColumns = 256;
constexpr int kTilesAtOnce = 4;

// Runs a pass over the tiles of a frame, whose `count` lines are `spacing` pixels apart. Tiles hold whole
// groups of pixels, at least `least` pixels of a line.
void run_pass(const LaneKernel<CorrectMatte>& pass, MatteTile tile, std::int32_t radius, int count,
              std::ptrdiff_t spacing, std::ptrdiff_t least, const ParallelLoop& loop) {
    // A span never reaches further than the line's other end.
    tile.radius = std::clamp<std::ptrdiff_t>(radius, 0, tile.length - 1);
    const std::ptrdiff_t group = 2 * tile.radius + 1;
    const std::ptrdiff_t tile_length = (least + group - 1) / group * group;
    const std::ptrdiff_t blocks = (count + kMatteLines - 1) / kMatteLines;
    const std::ptrdiff_t along = (tile.length + tile_length - 1) / tile_length;
    loop(0, static_cast<int>(blocks * along), kTilesAtOnce, [&](int begin, int end) {
        MatteTile piece = tile;
        piece.begin = 0;
        piece.end = std::min(tile.length, tile_length);
        const auto scratch =
            std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(floats_needed(piece)));
        piece.scratch = scratch.get();
        for (std::ptrdiff_t t = begin; t < end; ++t) {
            const std::ptrdiff_t line = t % blocks * kMatteLines;
            piece.begin = t / blocks * tile_length;
            piece.end = std::min(tile.length, piece.begin + tile_length);
            piece.lines = static_cast<int>(std::min<std::ptrdiff_t>(kMatteLines, count - line));
            piece.matte = tile.matte + line * spacing;
            piece.pre_matte = tile.pre_matte + line * spacing;
            piece.result = tile.result + line * spacing;
            pass(piece);
        }
    });
}

}  // namespace

std::ptrdiff_t floats_needed(const MatteTile& tile) {
    const std::ptrdiff_t output = tile.end - tile.begin;
    const std::ptrdiff_t read = std::min(tile.length, output + 2 * tile.radius);
    const std::ptrdiff_t tails = std::min(tile.length, 2 * tile.radius + 1);
    return (read + output + 2 * tails) * kMatteLines;
}

void matte_correct(MatteLimit limit, std::int32_t radius, int width, int height, const float* matte,
                   const float* pre_matte, float* result, const ParallelLoop& loop) {
    MatteTile tile{limit, 0, 0, width, 0, 0, width, matte, pre_matte, result, nullptr};
    run_pass(correct_matte_rows, tile, radius, height, width, kAlongRows, loop);
    tile.length = height;
    run_pass(correct_matte_columns, tile, radius, width, 1, kAlongColumns, loop);
}
