// A node with five inputs that can be connected at will, and a round subject before a green backing.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "ZoImage/KnobPanel.h"
#include "keyer/VeloxaKeyer.h"
#include "support/TestImages.h"

namespace test {

using namespace Zo::Image;

inline float green_screen(Channel c, int x, int y) {
    const auto wave = static_cast<float>((x * 37 + y * 101 + static_cast<int>(c) * 17) % 23) / 460.0f;
    const int dx = x - 20;
    const int dy = y - 15;
    const bool subject = dx * dx + dy * dy < 90;
    const float backing[] = {0.0f, 0.2f, 0.65f, 0.3f, 0.0f};
    const float skin[] = {0.0f, 0.8f, 0.5f, 0.4f, 0.0f};
    const float edge = subject && dx * dx + dy * dy > 60 ? 0.5f : subject ? 1.0f : 0.0f;
    const auto i = static_cast<std::size_t>(c);
    return skin[i] * edge + backing[i] * (1.0f - edge) + wave;
}

inline std::vector<std::string> split(const std::string& settings) {
    std::vector<std::string> all;
    std::istringstream list(settings);
    for (std::string one; std::getline(list >> std::ws, one, ';');) all.push_back(one);
    return all;
}

struct Rig {
    explicit Rig(const Box& frame = {0, 0, 41, 31}) : Rig(frame, green_screen) {}
    Rig(const Box& frame, const FunctionSource::Pixel& pixel)
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
        node.set_input(1, &cp);
        node.set_input(2, &bg);
        node.set_input(3, &gm);
        node.set_input(4, &hm);
    }
    Iop& member(const std::string& name) { return *node.child(name)->as_iop(); }
    std::string reads(const char* name, int n) {
        const Op* op = node.child(name)->input_op(n);
        return op == nullptr ? "" : op->member_name();
    }

    FunctionSource fg, cp, bg, gm, hm;
    VeloxaKeyer node;
};

inline bool same_bit_pattern(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

inline bool same_bits(const Picture& a, const Picture& b) {
    for (std::size_t c = 1; c < a.planes.size(); ++c) {
        const std::size_t bytes = a.planes[c].size() * sizeof(float);
        if (std::memcmp(a.planes[c].data(), b.planes[c].data(), bytes) != 0) return false;
    }
    return true;
}

}  // namespace test
