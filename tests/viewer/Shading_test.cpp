#include "picture/Shading.h"

#include <limits>

#include "ZoImage/StatusColour.h"
#include "shot/Files.h"

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

using Pixel = std::array<float, 4>;

std::shared_ptr<const Image> flat(const Box& box, const Box& frame, const Pixel& pixel,
                                  ChannelSet channels = kMaskRgba) {
    return std::make_shared<const Image>(test::image_of(
        box, frame, channels, [&](Channel c, int, int) { return pixel[static_cast<std::size_t>(c - 1)]; }));
}

// Every pixel of its own red, 1/255 of what `value` says, and solid.
template <class Value>
std::shared_ptr<const Image> levels(const Box& box, const Box& frame, const Value& value) {
    return std::make_shared<const Image>(test::image_of(box, frame, kMaskRgba, [&](Channel c, int x, int y) {
        return c == kAlpha ? 1.0f : c == kRed ? static_cast<float>(value(x, y)) / 255.0f : 0.0f;
    }));
}

// Its middle, at 1:1.
std::uint32_t one(const Pixel& pixel, const View& view, const DisplayTransform& display = {},
                  ChannelSet channels = kMaskRgba) {
    const ShownPicture shown{flat({0, 0, 3, 3}, {0, 0, 3, 3}, pixel, channels), 1.0, {}};
    const Shaded shaded = shade(shown, view, display, {3, 3, 1.0, 1.0, {1.5, 1.5}});
    EXPECT_THAT(shaded.pixels, Each(shaded.pixels.front()));
    return shaded.pixels[4];
}

template <class Change>
View with(const Change& change) {
    View view;
    change(view);
    return view;
}

DisplayTransform display(const std::string& from, const char* name) {
    return display_transform(ColourConfig::built_in(), from, {name, "plain", ""});
}

TEST(Shading, PixelsAreWhatTheViewMakesOfThem) {
    const auto channel = [](Channels c) { return with([c](View& v) { v.channels = c; }); };
    const auto over = [](Behind b, float grey) {
        return with([&](View& v) {
            v.behind = b;
            v.behind_colour = {grey, 0.0f, grey};
            v.behind_picture = flat({0, 0, 3, 3}, {0, 0, 3, 3}, {0.0f, grey, grey, 0.0f});
        });
    };
    const auto tone = [](float gain, float gamma) {
        return with([=](View& v) {
            v.gain = gain;
            v.gamma = gamma;
        });
    };
    const View tint = with([](View& v) { v.overlay = true; });
    const DisplayTransform srgb = display("linear", "sRGB"), wide = display("linear", "Rec.2020"), none;
    const Pixel mid{0.5f, 0.25f, 0.0f, 0.6f};
    const struct {
        const char* what;
        Pixel pixel;
        View view;
        const DisplayTransform& display;
        std::uint32_t shown;
    } rows[] = {
        {"as stored", {0.2f, 0.4f, 0.6f, 0.0f}, {}, none, 0xff336699},
        {"rounded to the nearest", {0.4991f / 255, 0.5009f / 255, 254.51f / 255, 1.0f}, {}, none, 0xff0001ff},
        {"beyond both ends", {-3.0f, 7.0f, kInfinity, 1.0f}, {}, none, 0xff00ffff},
        {"NaN is black", {kNan, -kNan, 0.2f, kNan}, {}, none, 0xff000033},
        {"red", {0.2f, 0.4f, 0.6f, 0.8f}, channel(Channels::kRed), none, 0xff333333},
        {"green", {0.2f, 0.4f, 0.6f, 0.8f}, channel(Channels::kGreen), none, 0xff666666},
        {"blue", {0.2f, 0.4f, 0.6f, 0.8f}, channel(Channels::kBlue), none, 0xff999999},
        {"alpha", {0.2f, 0.4f, 0.6f, 0.8f}, channel(Channels::kAlpha), none, 0xffcccccc},
        {"luminance", {1.0f, 0.0f, 0.5f, 1.0f}, channel(Channels::kLuminance), none, 0xff3f3f3f},  // 0.2487
        {"half light on the screen", {0.5f, 0.0f, 1.0f, 1.0f}, {}, srgb, 0xffbc00ff},              // 187.5
        {"red light on the screen", {0.2f, 0.0f, 0.0f, 1.0f}, channel(Channels::kRed), srgb, 0xff7c7c7c},
        {"alpha is no light", {0.0f, 0.0f, 0.0f, 0.5f}, channel(Channels::kAlpha), srgb, 0xff808080},
        // 0.6274, 0.0691 and 0.0164 of it, to the power of 1 / 2.4.
        {"primaries mix", {1.0f, 0.0f, 0.0f, 1.0f}, {}, wide, 0xffd2542e},
        {"greys do not", {0.5f, 0.0f, 0.0f, 1.0f}, channel(Channels::kRed), wide, 0xffbfbfbf},
        {"infinite through the mixture", {kInfinity, kInfinity, kInfinity, 1.0f}, {}, wide, 0xffffffff},
        {"over black", mid, over(Behind::kBlack, 0.5f), none, 0xff804000},
        {"over a colour", mid, over(Behind::kColour, 0.5f), none, 0xffb34033},
        {"over a picture", mid, over(Behind::kPicture, 0.3f), none, 0xff805e1f},  // 0.37, 0.12
        {"over nothing", mid, {}, none, 0xff804000},
        {"gain", {0.2f, 0.4f, -0.2f, 1.0f}, tone(2.0f, 1.0f), none, 0xff66cc00},
        {"gamma", {0.25f, 0.04f, 1.0f, 1.0f}, tone(1.0f, 2.0f), none, 0xff8033ff},
        {"gain, then gamma", {0.0625f, 0.0f, 0.01f, 1.0f}, tone(4.0f, 2.0f), none, 0xff800033},
        {"gain, gamma, then the screen", {0.0625f, 0.0f, 0.0f, 1.0f}, tone(4.0f, 2.0f), srgb, 0xffbc0000},
        {"gain, then a mixing screen", {0.25f, 0.25f, 0.25f, 1.0f}, tone(2.0f, 1.0f), wide, 0xffbfbfbf},
        {"alpha is brightened too", {0.0f, 0.0f, 0.0f, 0.2f}, tone(2.0f, 1.0f), none, 0xff000000},
        {"no gain", {0.5f, 2.0f, 1.0f, 1.0f}, tone(0.0f, 1.0f), none, 0xff000000},
        {"half the tint", {0.2f, 0.4f, 0.6f, 1.0f}, tint, none, 0xff99334d},
        {"less where alpha is less", {0.2f, 0.4f, 0.6f, 0.5f}, tint, none, 0xff664d73},
        {"no more beyond 1", {0.2f, 0.4f, 0.6f, 9.0f}, tint, none, 0xff99334d},
        {"none without", {0.2f, 0.4f, 0.6f, kNan}, tint, none, 0xff336699},
    };
    for (const auto& row : rows) EXPECT_EQ(one(row.pixel, row.view, row.display), row.shown) << row.what;
    EXPECT_EQ(one(mid, over(Behind::kColour, 0.5f), {}, kMaskRgb), 0xff804000U) << "solid without alpha";
}

TEST(Shading, FalseColoursTellWhatIsBeyondInWhatIsShown) {
    const auto marked = [](Channels c, bool overlay = false) {
        return with([&](View& v) {
            v.false_colours = true;
            v.channels = c;
            v.overlay = overlay;
            v.overlay_colour[3] = 0.0f;
            v.gain = 0.01f;  // what is stored counts
        });
    };
    const struct {
        Pixel pixel;
        View view;
        std::uint32_t shown;
    } rows[] = {
        {{0.0f, 1.0f, 0.5f, 2.0f}, marked(Channels::kColour), 0xff000301},
        {{0.0f, 1.0001f, 0.5f, 1.0f}, marked(Channels::kColour), kFalseAbove},
        {{-1e-30f, 1.0f, 0.5f, 1.0f}, marked(Channels::kColour), kFalseBelow},
        {{-1.0f, 0.0f, 2.0f, 1.0f}, marked(Channels::kColour), kFalseAbove},
        {{-1.0f, 2.0f, -kInfinity, 1.0f}, marked(Channels::kColour), kFalseInfinite},
        {{kInfinity, 2.0f, kNan, 1.0f}, marked(Channels::kColour), kFalseNan},
        {{0.0f, 0.0f, 0.0f, 2.0f}, marked(Channels::kColour, true), kFalseAbove},
        {{0.0f, 2.0f, kNan, 0.0f}, marked(Channels::kRed), 0xff000000},
        {{0.0f, 2.0f, kNan, 0.0f}, marked(Channels::kGreen), kFalseAbove},
        {{0.0f, 2.0f, 0.0f, 0.0f}, marked(Channels::kLuminance), kFalseAbove},
        {{0.0f, 2.0f, kNan, -1.0f}, marked(Channels::kAlpha), kFalseBelow},
    };
    for (const auto& row : rows) EXPECT_EQ(one(row.pixel, row.view), row.shown) << &row - rows;
    // A single one among many, zoomed out.
    const Box box{0, 0, 64, 64};
    const auto speck = levels(box, box, [](int x, int y) { return x == 37 && y == 18 ? 300 : 0; });
    const Shaded small =
        shade({speck, 1.0, {}}, marked(Channels::kColour), {}, {8, 8, 0.125, 1.0, {32.0, 32.0}});
    for (std::size_t n = 0; n < small.pixels.size(); ++n) {
        EXPECT_EQ(small.pixels[n], n == 5 * 8 + 4 ? kFalseAbove : 0xff000000U) << n;
    }
}

TEST(Shading, StatusAndCheckerFollowTheirPixels) {
    for (const float alpha : {0.0f, 0.3f, 1.0f, 1.5f, -1.0f, kNan}) {
        View view = with([](View& v) { v.status = true; });
        view.gain = 3.0f;
        EXPECT_EQ(one({1.0f, 1.0f, 1.0f, alpha}, view), status_colour(alpha));
    }
    const View view = with([](View& v) { v.behind = Behind::kChecker; });
    const Box box{0, 0, 5, 5};
    const Shaded shaded =
        shade({flat(box, box, {0.1f, 0.1f, 0.1f, 0.5f}), 1.0, {}}, view, {}, {40, 40, 8.0, 1.0, {2.5, 2.5}});
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool light = (x / 16 + y / 16) % 2 != 0;
            EXPECT_EQ(shaded.pixels[static_cast<std::size_t>(40 * y + x)], light ? 0xff4d4d4dU : 0xff333333U);
        }
    }
}

// By a plain loop over the area: the pixel under each one's middle, or the mean of those whose middles are
// under it.
std::vector<std::uint32_t> plainly(const Image& image, double scale, const Box& frame, const Geometry& at) {
    const Box& box = image.info.box;
    std::vector<std::uint32_t> pixels;
    for (int v = 0; v < at.height; ++v) {
        for (int u = 0; u < at.width; ++u) {
            const Point middle = at.to_picture({u + 0.5, v + 0.5});
            const Point low = at.to_picture({1.0 * u, v + 1.0}), high = at.to_picture({u + 1.0, 1.0 * v});
            double sum = 0.0, count = 0.0;
            for (int y = box.y; y < box.t; ++y) {
                for (int x = box.x; x < box.r; ++x) {
                    const bool wide = high.x - low.x > 2.0 * scale, tall = high.y - low.y > 2.0 * scale;
                    const auto in = [&](bool mean, int n, double from, double to, double point) {
                        return mean ? (n + 0.5) * scale > from && (n + 0.5) * scale <= to
                                    : std::floor(point / scale) == n;
                    };
                    if (!in(wide, x, low.x, high.x, middle.x) || !in(tall, y, low.y, high.y, middle.y))
                        continue;
                    sum += static_cast<double>(image.line(kRed, y)[x - box.x]);
                    count += 1.0;
                }
            }
            const bool shown = middle.x >= box.x * scale && middle.x < box.r * scale &&
                               middle.y >= box.y * scale && middle.y < box.t * scale;
            const bool framed =
                middle.x >= frame.x && middle.x < frame.r && middle.y >= frame.y && middle.y < frame.t;
            const auto level = static_cast<std::uint32_t>(std::lround(shown ? sum / count * 255.0 : 0.0));
            pixels.push_back(shown || framed ? 0xff000000U | level << 16U : kSurround);
        }
    }
    return pixels;
}

TEST(Shading, PixelsLieWhereTheGeometrySays) {
    const Box frame{0, 0, 40, 30};
    const auto value = [](int x, int y) { return (x * 13 + y * 57 + 4000) % 251 + 0.3; };
    const struct {
        const char* what;
        Box box;
        double scale;
        Geometry at;
    } rows[] = {
        {"at 1:1, wider than the picture", frame, 1.0, {50, 41, 1.0, 1.0, {20.0, 15.5}}},
        {"at 1:1, inside of it", frame, 1.0, {9, 7, 1.0, 1.0, {20.5, 15.5}}},
        {"pixels inside of the frame", {7, 4, 22, 19}, 1.0, {50, 40, 1.0, 1.0, {20.0, 15.0}}},
        {"pixels outside of the frame", {-6, -3, 45, 36}, 1.0, {60, 50, 1.0, 1.0, {20.0, 15.0}}},
        {"pixels far from the frame", {60, 50, 70, 60}, 1.0, {90, 90, 1.0, 1.0, {40.0, 30.0}}},
        {"enlarged", frame, 1.0, {61, 47, 5.3, 1.0, {3.1, 28.7}}},
        {"reduced a little", frame, 1.0, {33, 27, 0.7, 1.0, {20.3, 15.1}}},
        {"reduced", frame, 1.0, {20, 16, 0.43, 1.0, {20.05, 15.55}}},
        {"reduced much, cut", {-6, -3, 45, 36}, 1.0, {9, 7, 0.1300001, 1.0, {18.02, 14.03}}},
        {"wide pixels, reduced in one direction", frame, 1.0, {60, 12, 0.4, 2.0, {20.03, 15.55}}},
        {"a stand-in", {0, 0, 20, 15}, 2.0, {50, 40, 1.0, 1.0, {20.0, 15.0}}},
        {"a stand-in, reduced", {0, 0, 20, 15}, 2.0, {14, 11, 0.23, 1.0, {20.05, 15.05}}},
    };
    for (const auto& row : rows) {
        const Box own{0, 0, static_cast<int>(frame.r / row.scale), static_cast<int>(frame.t / row.scale)};
        const auto image = levels(row.box, own, value);
        const auto wanted = plainly(*image, row.scale, frame, row.at);
        for (const int threads : {1, 3}) {
            const Shaded shaded = shade({image, row.scale, {}}, {}, {}, row.at, threads);
            EXPECT_THAT(shaded.pixels, ElementsAreArray(wanted)) << row.what << ", " << threads;
        }
    }
}

TEST(Shading, AStandInEndsWithThePicture) {
    // Five columns and rows, each third of them in the stand-in's two.
    const ShownPicture shown{flat({0, 0, 2, 2}, {0, 0, 2, 2}, {1.0f, 1.0f, 1.0f, 1.0f}), 3.0, {0, 0, 5, 5}};
    const Shaded shaded = shade(shown, {}, {}, {7, 7, 1.0, 1.0, {3.5, 3.5}});
    for (int n = 0; n < 49; ++n) {
        const bool inside = n % 7 < 5 && n / 7 >= 2;
        EXPECT_EQ(shaded.pixels[static_cast<std::size_t>(n)], inside ? 0xffffffffU : kSurround) << n;
    }
    EXPECT_THAT(shade({}, {}, {}, {2, 1, 1.0, 1.0, {}}).pixels, ElementsAre(kSurround, kSurround));
}

TEST(Shading, DifferencesAreOfEveryChannelAndPixel) {
    const Box frame{0, 0, 4, 1};
    const Image a = *flat({0, 0, 3, 1}, frame, {0.5f, 0.25f, kNan, 1.0f});
    const Image b = *flat({1, 0, 4, 1}, frame, {0.75f, 0.25f, 0.0f, 0.0f}, kMaskRgb);
    const Image d = difference(a, b, 4.0f);
    const auto row = [&](Channel c) { return std::vector<float>(d.line(c, 0), d.line(c, 0) + 4); };
    EXPECT_THAT(row(kRed), ElementsAre(2.0f, 1.0f, 1.0f, 3.0f));
    EXPECT_THAT(row(kGreen), ElementsAre(1.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_THAT(row(kBlue), ElementsAre(testing::IsNan(), testing::IsNan(), testing::IsNan(), 0.0f));
    EXPECT_THAT(row(kAlpha), ElementsAre(4.0f, 4.0f, 4.0f, 0.0f));
    const Image other = *flat({0, 0, 4, 2}, {0, 0, 4, 2}, {});
    EXPECT_THAT(test::told_by([&] { difference(a, other, 1.0f); }), testing::HasSubstr("4x1 and 4x2"));
}

}  // namespace
