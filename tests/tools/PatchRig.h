// A node with its panel, keying a small picture of patches.
#pragma once

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "tools/ToolRig.h"

namespace test {

inline constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInf = std::numeric_limits<float>::infinity();

using Rgb = std::array<float, 3>;

struct Patch {
    Box box;
    Rgb color;
};

inline const Box kFrame{0, 0, 96, 64};
inline const Box kBacking{4, 4, 20, 20};
inline const Box kShade{24, 4, 40, 20};    // backing in half light
inline const Box kGrey{44, 4, 60, 20};     // solid, with green in it
inline const Box kLeaf{64, 4, 80, 20};     // green of the subject's own
inline const Box kNoise{4, 40, 20, 56};    // backing that is not quite
inline const Box kWarm{24, 40, 40, 56};    // backing's brightness on skin
inline const Box kBroken{44, 40, 60, 56};  // NaN
inline const Box kHuge{64, 40, 80, 56};    // infinite
// Black with a little green, which has no content for the other knobs.
inline const Box kCloth{44, 24, 60, 36};
inline const std::vector<Patch> kPatches{{kShade, {0.1f, 0.3f, 0.12f}}, {kGrey, {0.3f, 0.42f, 0.31f}},
                                         {kLeaf, {0.2f, 0.3f, 0.1f}},   {kNoise, {0.2f, 0.56f, 0.24f}},
                                         {kWarm, {0.45f, 0.5f, 0.35f}}, {kBroken, {kNan, 0.4f, 0.3f}},
                                         {kHuge, {0.2f, kInf, 0.2f}},   {kCloth, {0.02f, 0.08f, 0.04f}}};

inline float plate(const std::vector<Patch>& patches, Channel c, int x, int y) {
    Rgb color{0.15f, 0.6f, 0.2f};
    for (const Patch& p : patches) {
        if (x >= p.box.x && x < p.box.r && y >= p.box.y && y < p.box.t) color = p.color;
    }
    const int grain = (x * 7 + y * 13 + static_cast<int>(c) * 5) % 5 - 2;
    return color[c - kRed] + 0.002f * static_cast<float>(grain);
}

struct Rig : ToolRig {
    explicit Rig(const NodeContext& context = {})
        : ToolRig(context),
          fg(kFrame, kMaskRgb, [this](Channel c, int x, int y) { return plate(patches, c, x, y); }),
          bg(kFrame, kMaskRgb, [](Channel c, int, int) { return 0.1f * static_cast<float>(c) + 0.1f; }) {
        node.set_input(0, &fg);
        node.set_input(2, &bg);
        set("screen_color", "0.15,0.6,0.2");
    }

    // Inside the box, so that shrinking at its borders does not matter.
    void stroke(const std::string& tool, const Box& box) {
        use(tool, {box.x + 3.2, box.y + 3.9, box.r - 3.4, box.t - 3.8});
    }

    // Whether a stroke changes the value of a knob.
    bool turns(const std::string& tool, const Box& box) {
        const std::string before = values();
        stroke(tool, box);
        return values() != before;
    }

    // The least and greatest value of a stage under the stroke.
    std::pair<float, float> span(const char* stage, Channel c, const Box& box) {
        node.invalidate();
        node.validate(true);
        Iop& op = *stage == '\0' ? node : *node.child(stage)->as_iop();
        const Picture picture = render(op, {box.x + 3, box.y + 3, box.r - 3, box.t - 3});
        const auto [low, high] = std::minmax_element(picture.planes[c].begin(), picture.planes[c].end());
        return {*low, *high};
    }

    std::vector<Patch> patches = kPatches;
    FunctionSource fg, bg;
};

using Values = std::pair<float, float>;

inline const Values kFull{255.0f, 255.0f};
inline const Values kNone{0.0f, 0.0f};

}  // namespace test
