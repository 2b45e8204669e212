// What the plug-in renders against what the node makes in this process, bit by bit.
#include <random>
#include <thread>

#include "ofx/Scene.h"

namespace ofxtest {
namespace {

using Render = OfxTest;

// Every stage is on in one of them, whole-frame stages in several.
const Settings kCleanup = look(
    "output_mode 1, cleanup 1, cleanup_shrink 3.5 2, cleanup_blur 2.5 4, edge_kernel 4, "
    "spill_suppression 0, screen_orphans 3");
const Settings kShadow = look(
    "shadow 1, shadows_blur 4 3, shadows_tint 0.1 0.05 0.2, overlay_mode 1, "
    "overlay_mono 1, overlay_color 0.2 0.9 0.1 0.6");
const Settings kLooks[] = {{},
                           look(""),
                           kCleanup,
                           kShadow,
                           look("film 1, film_strength 80, film_shrink 1 3, color_conformance 1, color_hue "
                                "40, edge_kernel 5, brights 130"),
                           look("unmix_method 1, unmix_encoding 1, cleanup 1"),
                           look("screen_correct 0, output_mode 2, matte_scale 1, merge 1")};

// In pieces of 13 by 9 pixels, in random order, from two threads.
Frame render_tiles(Instance& instance, double time = 0.0, double scale = 1.0) {
    const OfxRectI w = instance.window(time, scale);
    std::vector<OfxRectI> tiles;
    for (int y = w.y1; y < w.y2; y += 9) {
        for (int x = w.x1; x < w.x2; x += 13)
            tiles.push_back({x, y, std::min(x + 13, w.x2), std::min(y + 9, w.y2)});
    }
    std::shuffle(tiles.begin(), tiles.end(), std::mt19937(7));
    Frame frame(w);
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < tiles.size(); i = next++)
            EXPECT_EQ(instance.render(frame, tiles[i], time, scale), kOfxStatOK);
    };
    {
        const std::jthread other(work);
        work();
    }
    return frame;
}

// Every picture as `wanted` makes it of the one that is there.
using Pixel = decltype(Source::pixel);
Clips changed(Clips clips, const std::function<Pixel(const Pixel&)>& wanted) {
    for (auto& [name, source] : clips) source.pixel = wanted(source.pixel);
    return clips;
}

void expect_frames(Instance& effect, const Clips& clips, const Settings& settings, double time = 0.0,
                   double scale = 1.0) {
    const Frame expected = Reference(clips, settings, time, scale).render();
    EXPECT_EQ(differences(effect.render(time, scale), expected), 0);
    EXPECT_EQ(differences(render_tiles(effect, time, scale), expected), 0) << "in tiles";
}

TEST_F(Render, WholeAndInTiles) {
    for (const Clips& clips : {two_clips(), all_clips()}) {
        for (const Settings& settings : kLooks) {
            SCOPED_TRACE(std::to_string(&settings - kLooks) + ", clips " + std::to_string(clips.size()));
            expect_frames(*instance(clips, settings), clips, settings);
        }
    }
    EXPECT_GT(parallel_calls, 0);
}

TEST_F(Render, ClipsOfAllKinds) {
    const char *flt = kOfxBitDepthFloat, *wide = kOfxBitDepthShort, *byte = kOfxBitDepthByte,
               *half = kOfxBitDepthHalf;
    const char *rgba = kOfxImageComponentRGBA, *rgb = kOfxImageComponentRGB, *alpha = kOfxImageComponentAlpha;
    const struct {
        const char *clip, *depth, *components;
        bool upside_down;
    } cases[] = {{"fg", flt, rgb, true},    {"fg", wide, rgba, false},  {"fg", byte, rgb, true},
                 {"fg", half, rgba, true},  {"bg", half, rgb, false},   {"gm", half, alpha, true},
                 {"cp", byte, rgb, true},   {"bg", wide, rgb, true},    {"gm", flt, alpha, true},
                 {"gm", byte, rgb, false},  {"hm", wide, alpha, false}, {"hm", flt, rgb, false},
                 {"Output", flt, rgb, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.clip) + ' ' + c.depth + ' ' + c.components);
        Clips clips = all_clips();
        Source source = clips["fg"];
        const bool output = c.clip == std::string("Output");
        Source& given = output ? source : clips[c.clip];
        given.depth = c.depth;
        given.components = c.components;
        given.upside_down = c.upside_down;
        Frame expected = Reference(clips, kCleanup).render();
        const auto effect = instance(clips, kCleanup);
        if (output) effect->connect("Output", &source);
        // Output is as deep as the foreground.
        const auto& depth = effect->clip("Output").props.string_at(kOfxImageEffectPropPixelDepth);
        std::vector<float> values;
        for (std::size_t n = 0; n < expected.values.size(); ++n) {
            if (output && n % 4 == 3) continue;
            values.push_back(kept(expected.values[n], depth));
        }
        expected.values = values;
        EXPECT_EQ(differences(effect->render(), expected), 0);
    }
}

TEST_F(Render, ProxiesAndOblongPixels) {
    Settings settings = kCleanup, halved = kCleanup;
    settings.merge(look("screen_shrink 4 6"));
    settings["edge_kernel"] = {6};
    halved["cleanup_shrink"] = {1.75, 1};
    halved["cleanup_blur"] = {1.25, 2};
    halved["edge_kernel"] = {3};
    halved.merge(look("screen_shrink 2 3, film_shrink 1 1, shadows_blur 0 0"));
    const struct { double scale, aspect; } cases[] = {{0.5, 1.0}, {0.5, 2.0}, {1.0, 0.5}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.aspect);
        Clips clips = all_clips();
        for (auto& [name, source] : clips) source.aspect = c.aspect;
        expect_frames(*instance(clips, settings), clips, c.scale < 1.0 ? halved : settings, 0.0, c.scale);
    }
}

TEST_F(Render, FieldsAndWindowsBeyondTheFrame) {
    const auto effect = instance(two_clips(), kCleanup);
    Frame frame({kFrame.x1 - 5, kFrame.y1 - 4, kFrame.x2 + 6, kFrame.y2 + 3});
    Frame expected = frame;
    for (const int parity : {0, 1}) {
        const char* field = parity == 0 ? kOfxImageFieldLower : kOfxImageFieldUpper;
        EXPECT_EQ(effect->render(frame, frame.box, 0.0, 1.0, field), kOfxStatOK);
        const Clips doubled = changed(two_clips(), [parity](const Pixel& pixel) {
            return [=](double t, int c, int x, int y) { return pixel(t, c, x, (y & ~1) + parity); };
        });
        Frame whole = Reference(doubled, kCleanup).render();
        for (int y = kFrame.y1 + ((kFrame.y1 ^ parity) & 1); y < kFrame.y2; y += 2)
            std::copy_n(&whole.at(kFrame.x1, y, 0), 4 * (kFrame.x2 - kFrame.x1),
                        &expected.at(kFrame.x1, y, 0));
    }
    EXPECT_EQ(differences(frame, expected), 0);
}

TEST_F(Render, ImagesShorterThanTheFrameAndBackgroundsThatNeverEnd) {
    Clips clips = two_clips();
    clips["bg"].endless = true;
    const auto effect = instance(clips, kCleanup);
    expect_frames(*effect, two_clips(), kCleanup);
    effect->press("toolbar_screen");

    constexpr int kMissing = 6;
    clips = two_clips();
    for (auto& [name, source] : clips) source.missing = kMissing;
    // What an image lacks is as its edge.
    const Clips repeated = changed(two_clips(), [](const Pixel& pixel) {
        return [=](double t, int c, int x, int y) {
            return pixel(t, c, std::clamp(x, kFrame.x1 + kMissing, kFrame.x2 - kMissing - 1),
                         std::clamp(y, kFrame.y1 + kMissing, kFrame.y2 - kMissing - 1));
        };
    });
    EXPECT_EQ(differences(instance(clips, kCleanup)->render(), Reference(repeated, kCleanup).render()), 0);
}

// Whether hosts deliver what it has beyond the foreground or not.
TEST_F(Render, CleanPlatesOfAnotherSize) {
    constexpr int kMore = 6;
    const OfxRectI& f = kFrame;
    const struct {
        OfxRectI box, used;
        int missing = 0;
    } cases[] = {{{f.x1 - kMore, f.y1 - kMore, f.x2 + kMore, f.y2 + kMore}, f},
                 {{f.x1 - kMore, f.y1 - kMore, f.x2 + kMore, f.y2 + kMore}, f, kMore},
                 {{0, 8, 50, 38}, {0, 8, 50, 38}},
                 {{5, 3, 90, 30}, {5, 3, f.x2, 30}}};
    for (const auto& c : cases) {
        for (const Settings& settings : {kCleanup, look("shadow 1"), look("unmix_method 1")}) {
            SCOPED_TRACE(std::to_string(&c - cases));
            Clips clips = all_clips();
            clips["cp"].pixel = [](double, int channel, int x, int y) {
                return (channel == 1 ? 0.6f : 0.15f) + 0.01f * static_cast<float>((x * 7 + y * 3) % 13);
            };
            Clips used = clips;
            clips["cp"].box = c.box;
            clips["cp"].missing = c.missing;
            used["cp"].box = c.used;
            expect_frames(*instance(clips, settings), used, settings);
        }
    }
}

TEST_F(Render, AnimatedParametersAtTheFramesTime) {
    const auto effect = instance(two_clips(), kCleanup);
    effect->params.get("screen_color").set_keys({{0, {0.15, 0.6, 0.2}}, {8, {0.25, 0.8, 0.2}}});
    effect->params.get("spill_suppression").set_keys({{0, {0}}, {3, {1}}});
    const auto steady = instance(two_clips(), kCleanup);  // only its pictures change
    services.time = 5.0;                                  // the user looks elsewhere
    for (const double time : {2.0, 6.0, 2.0}) {
        SCOPED_TRACE(time);
        Settings settings = kCleanup;
        settings["screen_color"] = {0.15 + (0.25 - 0.15) * (time / 8), 0.6 + (0.8 - 0.6) * (time / 8), 0.2};
        settings["spill_suppression"] = {time < 3 ? 0.0 : 1.0};
        expect_frames(*effect, two_clips(), settings, time);
        EXPECT_EQ(differences(steady->render(time), Reference(two_clips(), kCleanup, time).render()), 0);
    }
}

TEST_F(Render, AnEditReadsLessUntilTheRowsAreGone) {
    services.threads = 1;  // which asks at every row whether to go on
    Settings settings{{"screen_color", kScreen}};
    const auto effect = instance(all_clips(), settings);
    const auto edit = [&](const char* knob, double value) {
        settings[knob] = {value};
        effect->set(knob, {value});
        effect->polls = 0;
        EXPECT_EQ(differences(effect->render(), Reference(all_clips(), settings).render()), 0) << knob;
        return effect->polls.load();
    };
    double value = 40.0;
    int whole = 0;
    for (int n = 0; n < 3; ++n) {
        const int first = edit("spill_strength", ++value);
        if (n == 0) whole = first;
        EXPECT_EQ(first, whole) << n;
        edit("spill_strength", ++value);
        EXPECT_LT(edit("spill_strength", ++value), whole) << n;
        for (const char* knob : {"brights", "output_mode", "screen_correct"}) {
            for (const double other : {0.0, 1.0}) edit(knob, other);
        }
        if (n == 0) {
            EXPECT_EQ(host_->action(kOfxActionPurgeCaches, effect.get()), kOfxStatOK);
        } else {
            effect->render(1.0);  // another picture
        }
    }
}

TEST_F(Render, AbortedAndThenWhole) {
    const Frame expected = Reference(all_clips(), kCleanup).render();
    int renders = 0;
    for (const int polls : {0, 1, 3, 0, 1}) {
        if (++renders == 4) host({.missing = {"OfxMultiThreadSuite 1"}});
        const auto effect = instance(all_clips(), kCleanup);
        effect->abort_after = polls;
        const OfxStatus status = effect->render_unseen(effect->window());
        EXPECT_TRUE(status == kOfxStatOK || status == kOfxStatFailed) << status;
        EXPECT_GT(effect->polls, polls) << "nobody asked";
        effect->abort_after = -1;
        EXPECT_EQ(differences(effect->render(), expected), 0) << "after " << polls << " polls";
    }
}

TEST_F(Render, PurgedAndEditedMeanwhileBesideAnother) {
    services.threads = 1;  // which asks at every row whether to go on
    const auto effect = instance(all_clips(), kShadow);
    const auto second = instance(two_clips(), kCleanup);
    const Frame expected[] = {Reference(all_clips(), kShadow).render(),
                              Reference(two_clips(), kCleanup).render()};
    const auto render = [&] { EXPECT_EQ(differences(effect->render(), expected[0]), 0); };
    for (int i = 0; i < 2; ++i) render();  // rows are kept from the second on
    effect->when_polled = [&] { host_->action(kOfxActionPurgeCaches, effect.get()); };
    render();
    const std::jthread one(render), other(render), beside([&] {
        for (int i = 0; i < 3; ++i) EXPECT_EQ(differences(second->render(), expected[1]), 0);
    });
    // Values that no render sees differently.
    for (int i = 0; i < 5; ++i) {
        effect->set("cleanup_shrink", {1.0 + i, 1.0});
        second->set("shadows_density", {90.0 + i});
        EXPECT_EQ(host_->action(kOfxActionPurgeCaches, second.get()), kOfxStatOK);
    }
}

// That they are no smaller shows in tiles.
TEST_F(Render, RegionsAreNoLargerThanWhatIsRead) {
    const auto effect = instance(all_clips(), {{"screen_color", kScreen}, {"screen_orphans", {0}}});
    const auto regions = effect->regions_of_interest({10, 20, 23, 29});
    EXPECT_GE(regions.at("fg").x1, 10 - 16);
    EXPECT_EQ(regions.at("bg").x1, 10);
}

TEST_F(Render, ClipsComeAndGo) {
    Clips clips = all_clips();
    const auto effect = instance(clips, kShadow);
    effect->render();
    for (const char* clip : {"bg", "gm", "cp", "hm"}) {
        SCOPED_TRACE(clip);
        const Source gone = clips.at(clip);
        clips.erase(clip);
        effect->connect(clip, nullptr);
        expect_frames(*effect, clips, kShadow);
        if (clip == std::string("gm")) continue;
        clips[clip] = gone;
        effect->connect(clip, &gone);
        expect_frames(*effect, clips, kShadow);
    }
}

TEST_F(Render, ImagesWithoutIdentifiersAndOfOtherSizes) {
    Clips clips = all_clips();
    for (auto& [name, source] : clips) source.identified = false;
    const auto effect = instance(clips, kCleanup);
    EXPECT_EQ(differences(effect->render(), Reference(clips, kCleanup).render()), 0);
    // A drawn matte ends at its shape, here within the figure: beyond it there is none.
    const OfxRectI shape{30, 18, 38, 28};
    Source small = clips["gm"];
    small.box = shape;
    small.pixel = [](double, int, int, int) { return 1.0f; };
    effect->connect("gm", &small);
    clips["gm"].pixel = [&](double, int, int x, int y) { return inside(shape, x, y) ? 1.0f : 0.0f; };
    expect_frames(*effect, clips, kCleanup);
    // The same place in memory may hold another picture next time.
    clips["fg"].pixel = [](double, int c, int x, int y) {
        return c == 1 ? 0.6f : 0.01f * static_cast<float>((x + y) % 30);
    };
    effect->connect("fg", &clips["fg"]);
    expect_frames(*effect, clips, kCleanup);
}

}  // namespace
}  // namespace ofxtest
