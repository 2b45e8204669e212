// The unmixing matte in the node, on good plates and on what is none.
#include <gtest/gtest.h>

#include <cmath>

#include "keyer/Rig.h"

using namespace test;

namespace {

constexpr float kBacking[] = {0.0f, 0.1f, 0.6f, 0.15f};

FunctionSource::Pixel flat(float r, float g, float b) {
    return [=](Channel c, int, int) { return c == kRed ? r : c == kGreen ? g : b; };
}

// A grey disc with a soft edge, lines beside it, a mark, a highlight, and noise.
float scene(Channel c, int x, int y) {
    const float noise = static_cast<float>((x * 7919 + y * 104729 + c * 1299709) % 1009) / 1009.0f - 0.5f;
    const float away = std::hypot(static_cast<float>(x - 100), static_cast<float>(y - 70));
    float alpha = std::clamp((46.0f - away) / 8.0f, 0.0f, 1.0f);
    if (x > 150 && y % 9 == 0) alpha = 0.6f;
    const float subject = away < 3.0f ? 40.0f : c == kRed ? 0.5f : 0.35f;
    const float dirt = std::abs(x - 20) < 5 && std::abs(y - 20) < 5 ? 0.8f : 1.0f;
    return alpha * subject + (1.0f - alpha) * dirt * kBacking[c] + 0.02f * noise;
}

struct Case {
    const char* name;
    FunctionSource::Pixel pixel;
    float alpha;  // of every pixel as the node comes; NaN: any
    Box frame{0, 0, 70, 50};
};

void check(const Case& c, const char* settings, bool plate, float alpha) {
    SCOPED_TRACE(testing::Message() << c.name << ": " << settings << (plate ? ", clean plate" : ""));
    Rig rig(c.frame, c.pixel);
    // A clean plate of something else, some of it unusable.
    rig.cp.set_pixel(
        [](Channel channel, int x, int y) { return x % 5 == 0 ? kNaN : scene(channel, y + 80, x + 30); });
    if (plate) rig.node.set_input(1, &rig.cp);
    rig.set(settings);
    const Picture out = render(rig.node, 2);
    ASSERT_TRUE(out.complete);
    for (std::size_t i = 0; i < out.planes[1].size(); ++i) {
        for (const Channel channel : kMaskRgb) ASSERT_TRUE(std::isfinite(out.planes[channel][i])) << i;
        const float found = out.planes[kAlpha][i];
        ASSERT_TRUE(found >= 0.0f && found <= 1.0f) << i << ": " << found;
        ASSERT_TRUE(std::isnan(alpha) || found == alpha) << i << ": " << found;
    }
}

TEST(Unmix, BadInputGivesFinitePictures) {
    const auto scattered = [](float value) {
        return
            [=](Channel c, int x, int y) { return (x + 3 * y) % 11 == 0 ? value : scene(c, x + 60, y + 40); };
    };
    const auto enormous = [](Channel c, int x, int y) { return 1e30f * scene(c, x + 60, y + 40); };
    const auto stripes = [](Channel c, int x, int) { return (x % 8 == 0 ? 0.9f : 1.0f) * kBacking[c]; };
    const auto backing = flat(0.1f, 0.6f, 0.15f);
    const Case cases[] = {
        {"backing alone", backing, 0.0f},
        {"no backing", flat(0.5f, 0.4f, 0.3f), 1.0f},
        {"black", flat(0.0f, 0.0f, 0.0f), 1.0f},
        {"NaN", flat(kNaN, kNaN, kNaN), 1.0f},
        {"infinite", flat(kInf, kInf, kInf), 1.0f},
        {"infinite backing", flat(0.0f, kInf, 0.0f), 0.0f},
        {"negative", flat(-0.5f, -0.4f, -0.3f), 1.0f},
        {"backing with a negative channel", flat(-0.1f, 0.6f, 0.1f), 0.0f},
        {"backing below zero in all but green", flat(-0.1f, 0.05f, -0.3f), 0.0f},
        {"dark backing", flat(0.001f, 0.02f, 0.002f), 0.0f},
        {"one pixel", backing, 0.0f, {0, 0, 1, 1}},
        {"one grey pixel", flat(0.5f, 0.5f, 0.5f), 1.0f, {5, 7, 6, 8}},
        {"four pixels", backing, 0.0f, {0, 0, 2, 2}},
        {"three pixels", backing, 0.0f, {0, 0, 3, 1}},
        {"a long column", scene, kNaN, {90, 0, 91, 140}},
        {"a long row", scene, kNaN, {0, 70, 3000, 71}},
        {"scattered NaN", scattered(kNaN), kNaN},
        {"scattered infinities", scattered(kInf), kNaN},
        {"scattered infinities below", scattered(-kInf), kNaN},
        {"enormous", enormous, kNaN},
        {"no solid", stripes, kNaN},
    };
    for (const Case& c : cases) {
        check(c, "unmix_method unmix", false, c.alpha);
        for (const char* const settings :
             {"unmix_method unmix; unmix_encoding sRGB; shadow 1; output_mode premultiplied",
              "unmix_method unmix; unmix_encoding logarithmic; unmix_denoise 0; unmix_detail 0"}) {
            for (const bool plate : {false, true}) check(c, settings, plate, kNaN);
        }
    }
}

// A frame of nothing to key after one of everything.
TEST(Unmix, ForgetsTheFrameBefore) {
    for (const auto& pixel : {flat(0.5f, 0.45f, 0.3f), flat(0.1f, 0.6f, 0.15f)}) {
        Rig fresh({0, 0, 200, 140}, pixel);
        Rig used({0, 0, 200, 140}, scene);
        for (Rig* rig : {&fresh, &used}) {
            rig->connect_all();
            rig->set("unmix_method unmix");
            render(rig->node);
        }
        used.fg.set_pixel(pixel);
        used.update();
        EXPECT_TRUE(same_bits(render(used.node), render(fresh.node)));
    }
}

TEST(Unmix, TheSameBitsOnAnyThreadsAndInEveryForm) {
    for (const char* const settings :
         {"unmix_method unmix", "unmix_method unmix; unmix_encoding sRGB; shadow 1"}) {
        SCOPED_TRACE(settings);
        const auto keyed = [&](int threads) {
            Rig rig({0, 0, 201, 141}, scene);
            rig.set(settings);
            return render(rig.node, threads);
        };
        expect_same_in_every_form(keyed, {2});
    }
}

}  // namespace
