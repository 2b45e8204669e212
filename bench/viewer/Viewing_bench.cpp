// What the viewer does with a picture before it is seen, on one thread.
#include <cmath>
#include <memory>

#include "picture/BoxStatistics.h"
#include "picture/Shading.h"
#include "picture/StatusMatte.h"
#include "support/Table.h"

namespace bench {

namespace {

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;

std::shared_ptr<const Image> picture(int width, int height) {
    Info info;
    info.box = info.format.box = {0, 0, width, height};
    info.channels = kMaskRgba;
    auto image = std::make_shared<Image>(info);
    for (const Channel c : kMaskRgba) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double wave = std::sin(0.013 * x * static_cast<int>(c)) * std::cos(0.017 * y) +
                                    0.2 * ((x * 7 + y * 3) % 11) / 11;
                image->line(c, y)[x] = static_cast<float>(0.5 + 0.6 * wave);
            }
        }
    }
    return image;
}

struct Case {
    const char* name;
    int width, height;            // of the picture
    int area_width, area_height;  // 0 for the picture's
    const char* display;
    View view;
};

View view_with(void (*change)(View&)) {
    View view;
    change(view);
    return view;
}

std::vector<Case> cases() {
    const View plain;
    return {
        {"1080p at 1:1", 1920, 1080, 0, 0, "sRGB", plain},
        {"1080p at 1:1, alpha", 1920, 1080, 0, 0, "sRGB",
         view_with([](View& v) { v.channels = Channels::kAlpha; })},
        {"1080p at 1:1, luminance", 1920, 1080, 0, 0, "sRGB",
         view_with([](View& v) { v.channels = Channels::kLuminance; })},
        {"1080p at 1:1, gain and gamma", 1920, 1080, 0, 0, "sRGB", view_with([](View& v) {
             v.gain = 1.5f;
             v.gamma = 1.2f;
         })},
        {"1080p at 1:1, checker", 1920, 1080, 0, 0, "sRGB",
         view_with([](View& v) { v.behind = Behind::kChecker; })},
        {"1080p at 1:1, overlay", 1920, 1080, 0, 0, "sRGB", view_with([](View& v) { v.overlay = true; })},
        {"1080p at 1:1, false colours", 1920, 1080, 0, 0, "sRGB",
         view_with([](View& v) { v.false_colours = true; })},
        {"1080p at 1:1, status", 1920, 1080, 0, 0, "sRGB", view_with([](View& v) { v.status = true; })},
        {"1080p at 1:1, mixing display", 1920, 1080, 0, 0, "Rec.2020", plain},
        {"4096x2160 in 1600x844", 4096, 2160, 1600, 844, "sRGB", plain},
        {"4096x2160 in 1600x844, alpha", 4096, 2160, 1600, 844, "sRGB",
         view_with([](View& v) { v.channels = Channels::kAlpha; })},
        {"200x100 at 8:1", 200, 100, 1600, 800, "sRGB", plain},
    };
}

void count(benchmark::State& state, const Timing& time) {
    state.counters["ms"] = time.median * 1e3;
    state.counters["least"] = time.least * 1e3;
    state.counters["processor ms"] = time.processor * 1e3;
}

void shade_case(benchmark::State& state, const Case& one) {
    for (auto _ : state) {
        const ShownPicture shown{picture(one.width, one.height), 1.0, {}};
        Geometry geometry;
        geometry.width = one.area_width ? one.area_width : one.width;
        geometry.height = one.area_height ? one.area_height : one.height;
        geometry = geometry.fitted(shown.image->info.format);
        const ColourConfig config = ColourConfig::built_in();
        const DisplayTransform display = display_transform(config, kLinear, {one.display, "plain", ""});
        count(state, time_calls([&] { benchmark::DoNotOptimize(shade(shown, one.view, display, geometry)); },
                                10, 0.5));
    }
}

template <class Work>
void measure(const char* name, int width, int height, const Work& work) {
    benchmark::RegisterBenchmark(name, [width, height, work](benchmark::State& state) {
        for (auto _ : state) {
            const auto image = picture(width, height);
            count(state, time_calls([&] { work(*image); }, 5, 0.5));
        }
    })->Iterations(1);
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    using namespace bench;
    for (const Case& one : cases()) {
        benchmark::RegisterBenchmark(one.name, [one](benchmark::State& state) {
            shade_case(state, one);
        })->Iterations(1);
    }
    measure("status counts of 4096x2160", 4096, 2160,
            [](const Image& image) { benchmark::DoNotOptimize(status_counts(image)); });
    measure("statistics of 4096x2160", 4096, 2160,
            [](const Image& image) { benchmark::DoNotOptimize(statistics(image, image.info.box)); });
    measure("difference of 4096x2160", 4096, 2160,
            [](const Image& image) { benchmark::DoNotOptimize(difference(image, image, 2.0f)); });
    measure("making a display transform", 1, 1, [](const Image&) {
        benchmark::DoNotOptimize(display_transform(ColourConfig::built_in(), kLinear, {"sRGB", "plain", ""}));
    });
    return run_table(argc, argv, "The viewer's pictures", {{"processor ms", 1}, {"ms", 1}, {"least", 1}});
}
