#include "keyer/NodeFloor.h"

#include <map>
#include <vector>

#include "ceilings/Ceilings.h"
#include "support/Kernel.h"

namespace bench {

namespace {

struct Use {
    const char* kernel;
    double times;     // a pixel
    bool all = true;  // false: passes over certain backing
};

// What a part of the panel adds to a key.
struct Part {
    std::vector<Use> kernels;
    double planes;  // passes of a plane through memory
};

const Part kShrink{{{"shrink_row, radius 2", 1}, {"shrink_lines, 5 lines", 1}}, 0};

// Foreground and background are read, four channels written.
const Part kBase{{{"normalize", 3},
                  {"remove_islands", 1},
                  {"suppress_spill", 1, false},
                  {"output_matte", 1},
                  {"opacity", 1},
                  {"output_colour", 3}},
                 3 + 3 + 4};
const Part kConstant{{{"clear_region", 1}, {"matte_constant", 1}, {"unveil_constant", 1, false}}, 0};
const Part kPlate{{{"normalize", 3},
                   {"crude_matte", 1},
                   {"clear_region, clean plate", 1},
                   {"matte_clean_plate", 1},
                   {"unveil_clean_plate", 1, false}},
                  3};
// Twice: the matte and the pre-matte are written and read twice; the result written, read, written, read.
const Part kEdges{{{"matte_correct, radius 3", 2}}, 2 * (3 + 3 + 4)};
const Part kCleanUp{{{"shrink_cu_row, radius 2", 1},
                     {"shrink_cu_lines, 5 lines", 1},
                     {"shrink_cu_end", 2},
                     {"blur_add, 5 lines", 2},
                     {"blur_finish", 2},
                     {"cleanup_matte", 1}},
                    0};
const Part kFilm{
    {{"sub_region", 1}, {"film_lowest, 4 lines", 1}, {"film_highest, 4 lines", 1}, {"film_correct", 1}}, 0};
// Three colours are written, smoothed in place twice and read; distances take half a plane.
const Part kShadow{{{"smart_interpol", 1}, {"combine_shadow", 1}}, 3 * (1 + 2 + 2 + 1) + 0.5 * 6};
const Part kPlainShadow{{{"compute_shadow", 1}}, 0};
const Part kPlateShadow{{{"clear_frame", 1}}, 0};
const Part kShadowBlur{{{"blur_add, 5 lines", 2}, {"blur_finish", 2}}, 0};
const Part kColour{{{"conform_colour", 1}}, 0};
const Part kOverlay{{{"overlay", 1}}, 0};

// Of the pixels a tenth are unknown, and solved for ten colours each, with what lies around their tiles; half
// are the subject's. The plate is written in light and read four times, the solution's three planes and the
// matte written and read, the colour written and read; foreground and background are read, four channels
// written.
const Part kUnmix{{{"odd_pixels", 1},
                   {"solve_common", 0.1 * 10 * 1.3},
                   {"box_sum, radius 3", 0.2 * 8},
                   {"pull_to_clear", 0.2 * 2},
                   {"take_backing", 3},
                   {"remove_spill", 0.5},
                   {"linear_opacity", 2},
                   {"added_colour", 3}},
                  3 + 3 * 5 + 3 * 2 + 2 + 3 * 2 + 3 + 4};

using Parts = std::vector<const Part*>;
const std::map<std::string, Parts> kParts{
    {"default", {&kBase, &kConstant, &kShrink}},
    {"clean plate", {&kBase, &kPlate, &kShrink, &kShrink}},
    {"edge kernel 3", {&kBase, &kConstant, &kShrink, &kEdges}},
    {"clean-up, shrink 2, blur 2", {&kBase, &kConstant, &kShrink, &kCleanUp}},
    {"unmix", {&kUnmix}},
    {"film", {&kBase, &kConstant, &kShrink, &kShrink, &kFilm}},
    {"shadows", {&kBase, &kConstant, &kShrink, &kShadow, &kPlainShadow}},
    {"shadows, clean plate", {&kBase, &kPlate, &kShrink, &kShrink, &kShadow, &kPlateShadow}},
    {"colour conformance", {&kBase, &kConstant, &kShrink, &kColour}},
    {"everything",
     {&kBase, &kPlate, &kShrink, &kShrink, &kShrink, &kEdges, &kCleanUp, &kFilm, &kShadow, &kPlateShadow,
      &kShadowBlur, &kColour, &kOverlay}},
};

double kernel_floor(const std::string& name) {
    static const std::map<std::string, double> floors = [] {
        std::map<std::string, double> made;
        for (const auto& folder :
             {stages_kernels(), screen_kernels(), framework_kernels(), output_kernels(), unmix_kernels()}) {
            for (const Kernel& kernel : folder) made[kernel.name] = floor_nanoseconds(kernel.pixel);
        }
        return made;
    }();
    return floors.at(name);
}

}  // namespace

double node_floor(const std::string& configuration, double backing, int threads) {
    double arithmetic = 0.0;
    double planes = 0.0;
    for (const Part* part : kParts.at(configuration)) {
        for (const Use& use : part->kernels) {
            arithmetic += use.times * kernel_floor(use.kernel) * (use.all ? 1.0 : 1.0 - backing);
        }
        planes += part->planes;
    }
    return arithmetic / threads + planes * sizeof(float) / ceilings().copied_bytes * 1e9;
}

}  // namespace bench
