// The node as a whole: wiring, requests, what a change recomputes, independence of threads and forms.
#include <gmock/gmock.h>

#include <cmath>
#include <set>

#include "keyer/Rig.h"

using namespace test;

namespace {

const char* const kEverythingOn =
    "film 1; shadow 1; cleanup 1; color_conformance 1; edge_kernel 3; cleanup_shrink 15,5; cleanup_blur 2,1; "
    "shadows_blur 2,3; film_strength 50; color_hue 20; overlay_mode screen";

// Each: reader, its input, what it reads.
void expect_wires(bool clean_plate, const char* settings, const std::vector<std::string>& expected) {
    Rig rig;
    if (clean_plate) rig.node.set_input(1, &rig.cp);
    rig.set(settings);
    std::vector<std::string> wires;
    for (const Op* reader : rig.node.children()) {
        for (int n = 0; n < reader->inputs(); ++n) {
            const Op* const source = reader->input_op(n);
            wires.push_back(reader->member_name() + ' ' + std::to_string(n) + ' ' +
                            (source == nullptr ? "" : source->member_name()));
        }
    }
    EXPECT_THAT(wires, testing::IsSupersetOf(expected)) << settings << (clean_plate ? ", clean plate" : "");
}

TEST(Graph, AlternativesOfTheWiring) {
    expect_wires(
        false, "",
        {"filmCorrection 1 shrinkS", "clearRegionCP 1 normFg", "clearRegion 0 normFg", "clearRegion 1 normCp",
         "shrinkScreen 0 computeIsland", "computePFG 0 normFg", "computePFG 2 computeMatte",
         "computePFG 3 shrinkScreen", "matteCorrectRaw 1 shrinkScreen", "outputMatte 0 computePFG",
         "spillSuppression 1 shrinkScreen", "colorCorrection 0 spillSuppression", "blurCU 0 outputMatte",
         "cleanup 0 outputMatte", "smartInterpol 0 normFg", "shadowBlur 0 computeShadow",
         "combineShadow 0 spillSuppression", "combineShadow 1 outputMatte"});
    expect_wires(true, "",
                 {"clearRegionCP 1 normCp", "clearRegion 0 shrinkCP", "smartInterpol 0 normCp",
                  "shadowBlur 0 clearFrame"});
    expect_wires(
        true, "screen_correct 0",
        {"clearRegion 0 normFg", "matteCorrectRaw 1 computeMatte", "matteCorrectPFG 1 computePFG",
         "spillSuppression 1 outputMatte", "computePFG 3 shrinkScreen", "shadowBlur 0 computeShadow"});
    expect_wires(false, "screen_shrink 0,-3; film_shrink 0,0",
                 {"computePFG 3 computeIsland", "filmCorrection 1 subRegion"});
    expect_wires(false, "screen_shrink 0,0; screen_orphans off",
                 {"computePFG 3 clearRegion", "shrinkScreen 0 clearRegion", "smartInterpol 1 clearRegion"});
    expect_wires(false, "edge_kernel 0.99", {"computePFG 2 computeMatte", "outputMatte 0 computePFG"});
    expect_wires(
        false, "edge_kernel 1; film 1",
        {"computePFG 2 matteCorrectRaw", "outputMatte 0 matteCorrectPFG", "computePFG 0 filmCorrection"});
    expect_wires(false, "cleanup 1; cleanup_shrink 0,1; cleanup_blur 1,0",
                 {"blurCU 0 shrinkCU", "cleanup 0 blurCU", "combineShadow 1 cleanup"});
    // A clean-up that changes nothing is left out.
    expect_wires(false, "cleanup 1; cleanup_cleanup 0.9; cleanup_shrink 0,1", {"combineShadow 1 shrinkCU"});
    expect_wires(false, "color_conformance 1; spill_suppression 0",
                 {"colorCorrection 0 outputMatte", "combineShadow 0 colorCorrection"});
    expect_wires(false, "spill_suppression 0", {"combineShadow 0 outputMatte"});
    expect_wires(
        true, "unmix_method unmix",
        {"unmixColour 0 unmixClean", "shrinkCU 0 unmixMatte", "blurCU 0 unmixMatte", "cleanup 0 unmixMatte",
         "shadowBlur 0 unmixShadow", "combineShadow 0 unmixMatte", "combineShadow 1 unmixMatte"});
    expect_wires(false, "unmix_method unmix; color_conformance 1; cleanup 1; cleanup_blur 1,1",
                 {"colorCorrection 0 unmixMatte", "blurCU 0 unmixMatte", "cleanup 0 blurCU",
                  "combineShadow 0 colorCorrection", "combineShadow 1 cleanup"});
}

// A shadow on the backing that grows to 0.4 in its middle, off the subject.
TEST(Graph, TheUnmixedShadowIsWhatTheBackingLacks) {
    const Box frame{0, 0, 160, 90};
    const auto light = [](int x, int y) {
        const auto away = static_cast<float>((x - 110) * (x - 110) + (y - 45) * (y - 45));
        return 1.0f - 0.4f * std::exp(-0.5f * away / (18.0f * 18.0f));
    };
    Rig rig(frame, [&](Channel c, int x, int y) {
        const bool subject = (x - 35) * (x - 35) + (y - 45) * (y - 45) < 400;
        return subject ? 0.5f + 0.05f * static_cast<float>(c) : light(x, y) * green_screen(c, 0, y);
    });
    rig.node.set_input(2, &rig.bg);
    rig.set("unmix_method unmix; shadow 1");
    const Picture shadow = render(rig.member("unmixShadow"), frame, 2);
    EXPECT_NEAR(shadow.at(kAlpha, 110, 45), 102.0f, 25.0f);
    EXPECT_NEAR(shadow.at(kAlpha, 110, 5), 0.0f, 20.0f);
    const Picture kept = render(rig.node, frame, 2);
    rig.set("shadow 0");
    const Picture gone = render(rig.node, frame, 2);
    EXPECT_GT(kept.at(kAlpha, 110, 45), 0.03f);
    EXPECT_LT(kept.at(kRed, 110, 45), gone.at(kRed, 110, 45));
    EXPECT_LT(gone.at(kAlpha, 110, 45), 0.02f);
    EXPECT_EQ(kept.at(kAlpha, 35, 45), 1.0f);
    EXPECT_NEAR(kept.at(kRed, 35, 45), gone.at(kRed, 35, 45), 1e-5f);
}

TEST(Graph, EveryMemberIsWired) {
    Rig rig;
    rig.connect_all();
    rig.update();
    for (const Op* member : rig.node.children()) {
        for (int n = 0; n < member->inputs(); ++n)
            EXPECT_TRUE(member->connected(n)) << member->member_name() << n;
    }
}

TEST(Graph, WithoutAScreenColourTheForegroundPasses) {
    Rig rig;
    rig.connect_all();
    rig.knobs().screen_color = {0.0f, 0.0f, 0.0f};
    rig.update();
    const Picture out = render(rig.node, 2);
    for (const Channel c : kMaskRgb) EXPECT_EQ(out.at(c, 7, 9), green_screen(c, 7, 9));
    EXPECT_EQ(out.at(kAlpha, 7, 9), 0.0f);
    EXPECT_EQ(rig.bg.rows() + rig.cp.rows() + rig.gm.rows() + rig.hm.rows(), 0);
    EXPECT_EQ(rig.gm.validations(), 0);
}

TEST(Graph, OptionalInputsThatAreOffAreNotTouched) {
    Rig rig;
    rig.node.set_input(1, &rig.cp);
    rig.node.set_input(3, &rig.gm);
    rig.knobs().screen_correct = false;
    rig.update();
    EXPECT_EQ(rig.node.input_flags(), kGmConnected);
    EXPECT_EQ(rig.cp.validations(), 0);
    EXPECT_EQ(rig.gm.validations(), 0);
    render(rig.node);
    EXPECT_EQ(rig.cp.rows(), 0);
    char buffer[64] = "mine";
    EXPECT_EQ(rig.node.input_label(5, buffer), buffer);
    EXPECT_STREQ(rig.node.input_label(4, buffer), "hm");
    EXPECT_EQ(rig.node.default_input(1), nullptr);
    EXPECT_NE(rig.node.default_input(2), nullptr);
}

TEST(Graph, DefaultKeyComputesRowsOnceAndNothingElse) {
    const Box frame{0, 0, 40, 400};
    Rig rig(frame);
    rig.update();
    Renderer renderer(2);
    ASSERT_TRUE(render(renderer, rig.node, frame).complete);
    const std::set<std::string> idle{"filmCorrection", "smartInterpol", "combineShadow", "cleanup",
                                     "matteCorrectRaw"};
    for (const OpStats& op : renderer.stats()) {
        EXPECT_LE(op.rows, 460) << op.op->class_name() << ' ' << op.op->member_name();
        EXPECT_FALSE(idle.contains(op.op->member_name())) << op.op->member_name();
    }
}

TEST(Graph, ASpillKnobLeavesEverythingUpstreamAsItIs) {
    Rig rig;
    rig.connect_all();
    rig.set(kEverythingOn);
    Renderer renderer(2);
    const Box frame = rig.node.info().box;
    ASSERT_TRUE(render(renderer, rig.node, frame).complete);
    const auto rows_of = [&](const char* name) {
        for (const OpStats& op : renderer.stats()) {
            if (op.op->member_name() == name) return op.rows;
        }
        return std::int64_t{-1};
    };
    EXPECT_GT(rows_of("computeMatte"), 0);
    const int fg_validations = rig.fg.validations();
    rig.knobs().spill_cool = 71.0f;
    rig.update();
    const std::set<std::string> downstream{"spillSuppression", "colorCorrection", "combineShadow"};
    for (const Op* child : rig.node.children()) {
        const std::string name = child->member_name();
        const Iop& member = rig.member(name);
        // A member that nobody requested has never been validated; the others keep what they have.
        EXPECT_TRUE(member.requested().count == 0 || member.valid() != downstream.contains(name)) << name;
    }
    ASSERT_TRUE(render(renderer, rig.node, frame).complete);
    EXPECT_EQ(rig.fg.validations(), fg_validations);
    // Only the raw matte correction reads the raw matte, and its frame is still there.
    EXPECT_EQ(rows_of("computeMatte"), 0);
}

struct Configuration {
    bool inputs;
    const char* settings;
} const kConfigurations[] = {
    {false, ""},
    {true, ""},
    {false, "edge_kernel 4"},
    {false, "cleanup 1; cleanup_shrink 1.5,7; cleanup_blur 30,2"},
    {false, "film 1"},
    {false, "shadow 1"},
    {false, "color_conformance 1; color_hue 20"},
    {true, kEverythingOn},
    {true, "matte_scale linear; merge add; spill_suppression 0"},
    {false, "unmix_method unmix; cleanup 1; unmix_encoding sRGB"},
    {true, "unmix_method unmix; shadow 1; color_conformance 1"},
    {true, "cleanup 1; screen_shrink 1e9,1e9; cleanup_shrink 1e9,1e9; edge_kernel 1e9"},
};

const Box kFrames[] = {{0, 0, 1, 1}, {-3, 5, 0, 6}, {7, -20, 8, 21}, {-11, -7, 52, 60}};

float awkward(Channel c, int x, int y) {
    const float odd[] = {0.0f, -1.0f, 150.0f, kInf, -kInf, kNaN, 1e30f, -0.0f, -kNaN};
    const unsigned pick = static_cast<unsigned>(x * 73 + y * 151 + static_cast<int>(c) * 31) % 97U;
    return pick < std::size(odd) ? odd[pick] : green_screen(c, x, y);
}

void configure(Rig& rig, const Configuration& configuration) {
    if (configuration.inputs) rig.connect_all();
    rig.set(configuration.settings);
}

TEST(Graph, PixelsDoNotDependOnThreadsOrForms) {
    for (const Box& frame : kFrames) {
        for (const Configuration& configuration : kConfigurations) {
            SCOPED_TRACE(configuration.settings);
            const auto keyed = [&](int threads) {
                Rig rig(frame, awkward);
                configure(rig, configuration);
                return render(rig.node, frame, threads);
            };
            expect_same_in_every_form(keyed, {1, 2, 3, 8});
        }
    }
}

TEST(Graph, MembersDoNotDependOnThreadsWindowsOrSize) {
    for (const Box& frame : kFrames) {
        for (const Configuration& configuration : {kConfigurations[0], kConfigurations[7]}) {
            Rig rig(frame, awkward);
            configure(rig, configuration);
            for (const Op* member : rig.node.children()) {
                const std::string& name = member->member_name();
                const Picture one = render(rig.member(name), frame, 1);
                rig.node.close();  // forgets whole frames
                rig.update();
                const Picture three = render(rig.member(name), frame, 3);
                EXPECT_TRUE(same_bits(one, three)) << name;
                // One column alone, as a host asks for tiles.
                const Box tile{frame.x + frame.width() / 2, frame.y, frame.x + frame.width() / 2 + 1,
                               frame.t};
                const Picture column = render(rig.member(name), tile, 2);
                for (int y = tile.y; y < tile.t; ++y) {
                    for (const Channel c : kMaskRgba) {
                        ASSERT_TRUE(same_bit_pattern(column.at(c, tile.x, y), one.at(c, tile.x, y)))
                            << name << ' ' << c << " at " << y;
                    }
                }
            }
        }
    }
}

}  // namespace
