// A node with five inputs that can be connected at will, and a round subject before a green backing.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "ZoImage/KnobPanel.h"
#include "keyer/VeloxaKeyer.h"
#include "lanes/Lanes.h"
#include "support/Loops.h"
#include "support/TestImages.h"

namespace test {

using namespace Zo::Image;

inline constexpr float kInf = std::numeric_limits<float>::infinity();
inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

inline constexpr float kPlainBacking[] = {0.0f, 0.2f, 0.65f, 0.3f, 0.0f};  // by channel number

inline float green_screen(Channel c, int x, int y) {
    const auto wave = static_cast<float>((x * 37 + y * 101 + static_cast<int>(c) * 17) % 23) / 460.0f;
    const int away = (x - 20) * (x - 20) + (y - 15) * (y - 15);
    const float skin[] = {0.0f, 0.8f, 0.5f, 0.4f, 0.0f};
    const float alpha = away >= 90 ? 0.0f : away > 60 ? 0.5f : 1.0f;
    return skin[c] * alpha + kPlainBacking[c] * (1.0f - alpha) + wave;
}

inline std::vector<std::string> split(const std::string& settings) {
    std::vector<std::string> all;
    std::istringstream list(settings);
    for (std::string one; std::getline(list >> std::ws, one, ';');) all.push_back(one);
    return all;
}

struct Rig {
    explicit Rig(const Box& frame = {0, 0, 41, 31}, const FunctionSource::Pixel& pixel = green_screen)
        : fg(frame, kMaskRgb, pixel),
          cp(frame, kMaskRgb,
             [](Channel c, int x, int) {
                 return c == kGreen ? 0.66f : 0.2f + 0.001f * static_cast<float>(x);
             }),
          bg(frame, kMaskRgba, [](Channel, int x, int y) { return static_cast<float>((x + y) % 9) * 0.1f; }),
          gm(frame, kMaskAlpha, [](Channel, int x, int) { return x < 3 ? 1.0f : 0.0f; }),
          hm(frame, kMaskAlpha, [](Channel, int x, int y) { return x > 30 && y < 5 ? 0.5f : 0.0f; }),
          node(NodeContext{}) {
        node.set_input(0, &fg);
        knobs().screen_color = {0.2f, 0.65f, 0.3f};
    }
    KnobStorage& knobs() { return node.knob_values(); }
    // Knobs as a user sets them: "shadow 1; shadows_blur 2,3".
    void set(const std::string& settings) {
        KnobPanel panel(node);
        for (const std::string& one : split(settings)) {
            const std::size_t blank = one.find(' ');
            panel.set_from_text(one.substr(0, blank), one.substr(blank + 1));
        }
        update();
    }
    // As a host does after knobs changed.
    void update() {
        node.invalidate();
        node.validate(true);
    }
    void connect_all() {
        int n = 0;
        for (Op* const source : {&cp, &bg, &gm, &hm}) node.set_input(++n, source);
    }
    Iop& member(const std::string& name) { return *node.child(name)->as_iop(); }

    FunctionSource fg, cp, bg, gm, hm;
    VeloxaKeyer node;
};

inline bool same_bit_pattern(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

inline bool same_bits(const Picture& a, const Picture& b) {
    return std::ranges::equal(a.planes, b.planes, [](const auto& plane, const auto& other) {
        return std::ranges::equal(plane, other, same_bit_pattern);
    });
}

// What `render` gives for a number of threads has the same bits for any, with every form of the kernels.
template <class Render>
void expect_same_in_every_form(const Render& render, std::initializer_list<int> threads) {
    const Lanes before = lanes_in_use();
    use_lanes(Lanes::kScalar);
    const Picture plain = render(1);
    for (const Lanes lanes : kAllLanes) {
        if (!supported(lanes)) continue;
        use_lanes(lanes);
        for (const int n : threads) EXPECT_TRUE(same_bits(plain, render(n))) << name_of(lanes) << ' ' << n;
    }
    use_lanes(before);
}

}  // namespace test
