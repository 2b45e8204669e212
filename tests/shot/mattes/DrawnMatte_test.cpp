// Drawn mattes: their pixels against a plain loop, their script, and frames that have them.
#include "shot/mattes/DrawnMatte.h"

#include <cmath>
#include <limits>

#include "ZoImage/Render.h"
#include "shot/Files.h"
#include "shot/files/AtomicFile.h"
#include "shot/setup/KeySetup.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

using Kind = DrawnMatte::Kind;

constexpr Box kFrame{0, 0, 40, 30};
const Format kFormat{kFrame, 1.0};

const DrawnMatte kTriangle{Kind::kGarbage, false, 0.0, {{30.7, 2.1}, {3.3, 8.5}, {22.2, 26.9}}};
const DrawnMatte kSoft{Kind::kGarbage, false, 9.5, {{5, 5}, {30, 5}, {30, 20}, {18, 11}, {5, 20}}};
// A star whose middle is gone around twice.
const DrawnMatte kStar{Kind::kGarbage, true, 3.0, {{20, 29}, {8, 1}, {37, 19}, {3, 19}, {32, 1}}};
const DrawnMatte kBeyond{
    Kind::kGarbage, false, 14.0, {{-900.5, 12}, {20, -300}, {60, 45}, {60, 45}, {-3, 40}}};
const DrawnMatte kHeld{Kind::kHoldout, false, 2.0, {{1, 1}, {9, 1}, {9, 9}}};

// What the matte is at a place, from its definition.
double value_at(const DrawnMatte& matte, double x, double y) {
    double nearest = std::numeric_limits<double>::max();
    int turns = 0;  // of lines to the right that the place is level with
    for (std::size_t n = 0; n < matte.points.size(); ++n) {
        const auto& [ax, ay] = matte.points[n];
        const auto& [bx, by] = matte.points[(n + 1) % matte.points.size()];
        const auto away = [&](double share) {
            return std::hypot(x - ax - share * (bx - ax), y - ay - share * (by - ay));
        };
        double from = 0.0, to = 1.0;  // the distance falls, then rises
        for (int step = 0; step < 100; ++step) {
            const double third = (to - from) / 3.0;
            const bool near = away(from + third) < away(to - third);
            (near ? to : from) += near ? -third : third;
        }
        nearest = std::min(nearest, away(from));
        if ((ay > y) != (by > y) && x < ax + (y - ay) * (bx - ax) / (by - ay)) ++turns;
    }
    const bool in = (turns % 2 == 1) != matte.outside;
    const double fall = std::min(nearest / std::max(matte.feather, 1.0), 0.5);
    return in ? 0.5 + fall : 0.5 - fall;
}

TEST(DrawnMatte, IsTheLargestOfThoseOfItsKind) {
    const auto wave = [](Channel, int x, int y) {
        return x == 2 ? NAN : 0.02f * static_cast<float>(x % 7 + y);
    };
    const auto under = std::make_shared<const Image>(test::image_of({-2, 1, 38, 33}, kFrame, kAlpha, wave));
    const struct {
        DrawnMattes mattes;
        bool over;
    } cases[] = {{{kTriangle}, false},
                 {{kSoft}, false},
                 {{kStar}, false},
                 {{kBeyond}, false},
                 {{kHeld, kSoft, kTriangle}, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(mattes_script(c.mattes));
        const auto image = draw(c.mattes, Kind::kGarbage, kFormat, c.over ? under : nullptr);
        ASSERT_NE(image, nullptr);
        const Box& box = image->info.box;
        EXPECT_EQ(box, (c.over ? Box{-2, 0, 40, 33} : kFrame));
        EXPECT_EQ(image->info.format, kFormat);
        EXPECT_EQ(image->info.channels, kAlpha);
        for (int y = box.y; y < box.t; ++y) {
            for (int x = box.x; x < box.r; ++x) {
                const int near_x = std::min(x, 37), near_y = std::max(y, 1);
                float wanted = c.over ? wave(kAlpha, near_x, near_y) : 0.0f;
                for (const DrawnMatte& m : c.mattes) {
                    if (m.kind == Kind::kHoldout) continue;
                    const auto drawn = static_cast<float>(value_at(m, x + 0.5, y + 0.5));
                    if (drawn > wanted) wanted = drawn;
                }
                const float is = image->line(kAlpha, y)[x - box.x];
                if (std::isnan(wanted) ? !std::isnan(is) : !(std::abs(is - wanted) < 1e-6f)) {
                    FAIL() << x << ',' << y << " is " << is << ", not " << wanted;
                }
            }
        }
    }
    EXPECT_EQ(draw({kHeld}, Kind::kGarbage, kFormat, under), nullptr);
    EXPECT_EQ(draw({{Kind::kHoldout, true, 5.0, {{1, 1}, {9, 9}}}}, Kind::kHoldout, kFormat, nullptr),
              nullptr);
}

TEST(DrawnMatte, ScriptsGiveBackWhatTheyWereGiven) {
    DrawnMattes mattes{kTriangle, kStar, kHeld, kBeyond};
    mattes[0].points[0] = {0.1 + 0.2, -1.0 / 3.0};
    EXPECT_EQ(read_mattes("Veloxa {\n    brights 90\n}\n" + mattes_script(mattes), "f"), mattes);
    EXPECT_EQ(read_mattes("Veloxa {\n}\nMatte {\n  points {1 2 3 4 5 6}\n}\n", "f"),
              (DrawnMattes{{Kind::kGarbage, false, 0.0, {{1, 2}, {3, 4}, {5, 6}}}}));
    const std::string points = "points {1 2 3 4 5 6}\n";
    const std::pair<std::string, std::string> faults[] = {
        {"kind soft\n" + points, "f:2: kind is garbage or holdout; got soft"},
        {"side up\n" + points, "f:2: side is inside or outside; got up"},
        {points + "feather -1\n", "f:3: feather is a number of pixels, 0 or more; got -1"},
        {"points {1 2 3 4 5}\n", "f:2: points are x and y of three corners or more; got 5 numbers"},
        {"points {1 2 3 4 5 inf}\n", "f:2: points: a number within 1000000 pixels is expected; got inf"},
        {"side inside\n", "f:1: a matte needs its points"},
        {points + "blur 3\n", "f:3: 'blur' is nothing of a matte; there are kind, side, feather, points"},
        {points + points, "f:3: 'points' is given a second time; line 2 has it already"},
    };
    for (const auto& [text, fault] : faults) {
        EXPECT_EQ(test::told_by([&, t = text] { read_mattes("Matte {\n" + t + "}\n", "f"); }), fault);
    }
}

class DrawnFrames : public test::Files {
  protected:
    DrawnFrames() {
        const auto plate = [](Channel c, int x, int y) {
            return c == kGreen && x % 20 < 12 ? 0.6f : 0.01f * static_cast<float>(x % 9 + y % 7);
        };
        write_image(file("fg.exr"), test::image_of(kFrame, kFrame, kMaskRgb, plate),
                    {.depth = OIIO::TypeDesc::FLOAT});
        options_.inputs[kFg] = file("fg.exr");
        options_.settings.sets = {"screen_color=0.05,0.6,0.03"};
        caller_.tell = [this](const std::string& line) { told_ += line + '\n'; };
    }
    static std::vector<float> keyed(KeySetup& setup) {
        setup.inputs().set(setup.loader().load(0));
        std::vector<float> pixels;
        Renderer renderer(1);
        renderer.render(setup.node().image(), kFrame, kMaskRgba, [&](int, const Row& row) {
            for (const Channel c : kMaskRgba) pixels.insert(pixels.end(), row[c], row[c] + kFrame.width());
        });
        return pixels;
    }
    std::vector<float> keyed_with(const SetupOptions& options) {
        KeySetup setup(options, caller_);
        setup.prepare();
        return keyed(setup);
    }

    SetupOptions options_;
    Caller caller_;
    std::string told_;
};

TEST_F(DrawnFrames, OfAScriptAreWhatFilesOfThemWouldBe) {
    const DrawnMattes mattes{kSoft, kTriangle, kHeld};
    const auto write = [&](const char* name, const DrawnMattes& all, Kind kind) {
        write_image(file(name), *draw(all, kind, kFormat, nullptr), {.depth = OIIO::TypeDesc::FLOAT});
        return file(name);
    };
    SetupOptions files = options_, drawn = options_, both = options_;
    files.inputs[kGm] = write("gm.exr", mattes, Kind::kGarbage);
    files.inputs[kHm] = write("hm.exr", mattes, Kind::kHoldout);
    const std::vector<float> wanted = keyed_with(files);
    EXPECT_NE(wanted, keyed_with(options_));
    write_text(file("drawn.vlx"), "Veloxa {\n}\n" + mattes_script(mattes), false);
    drawn.settings.script = file("drawn.vlx");
    EXPECT_EQ(keyed_with(drawn), wanted);
    EXPECT_NE(told_.find(file("drawn.vlx") + ": 3 drawn mattes\n"), told_.npos);

    KeySetup(drawn, caller_).save_script(file("again.vlx"), false);
    drawn.settings = {file("again.vlx"), {}};
    EXPECT_EQ(keyed_with(drawn), wanted);
    both.inputs[kGm] = write("soft.exr", {kSoft}, Kind::kGarbage);
    write_text(file("rest.vlx"), mattes_script({kTriangle, kHeld}) + "Veloxa {\n}\n", false);
    both.settings.script = file("rest.vlx");
    EXPECT_EQ(keyed_with(both), wanted);
}

// As an interactive program does between frames.
TEST_F(DrawnFrames, ChangeWhileTheFilesStay) {
    KeySetup setup(options_, caller_);
    setup.prepare();
    const auto drawn = [&](const DrawnMattes& mattes) {
        setup.loader().draw(mattes);
        return std::pair(setup.loader().load(0)[kGm], keyed(setup));
    };
    DrawnMatte moved = kSoft;
    moved.points[3][1] += 5.0;
    const auto [none, bare] = drawn({});
    const auto [first, soft] = drawn({kSoft});
    EXPECT_EQ(setup.loader().load(0)[kGm].image, first.image) << "drawn twice";
    const auto [second, other] = drawn({moved});
    EXPECT_NE(second.identity, first.identity);
    EXPECT_NE(other, soft);
    EXPECT_NE(soft, bare);
    EXPECT_EQ(drawn({kSoft, kHeld}).first.identity, first.identity);
    EXPECT_EQ(drawn({}).second, bare);
}

}  // namespace
