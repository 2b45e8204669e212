#include "plates/Set.h"

#include <atomic>
#include <thread>

namespace plate {

using namespace Zo::Image;

namespace {

constexpr int kBand = 8;  // rows that a thread takes at a time

void put(veloxa::Image& image, int y, std::size_t x, Vec3 colour) {
    image.line(kRed, y)[x] = colour.x;
    image.line(kGreen, y)[x] = colour.y;
    image.line(kBlue, y)[x] = colour.z;
}

}  // namespace

Set render_set(const Options& options, int frame, int threads, const AbortFlag* abort) {
    Info info;
    info.box = info.format.box = {0, 0, options.width, options.height};
    Set set;
    for (std::size_t i = 0; i < set.size(); ++i) {
        info.channels = i == kGarbage || i == kAlphaTrue ? kMaskAlpha : kMaskRgb;
        set[i] = veloxa::Image(info);
        // Else the file would be stamped with the time and differ from run to run.
        set[i].header.attribute("DateTime", "1970:01:01 00:00:00");
    }

    const Scene scene(options, frame);
    const auto store = [&](int row, const std::vector<Pixel>& pixels) {
        const int y = options.height - 1 - row;
        for (std::size_t x = 0; x < pixels.size(); ++x) {
            const Pixel& p = pixels[x];
            const auto grainy = [&](Plate plate, Vec3 c) {
                const auto add = [&](int channel, float v) {
                    return v + grain(options, plate, frame, static_cast<int>(x), row, channel, v);
                };
                return Vec3{add(0, c.x), add(1, c.y), add(2, c.z)};
            };
            put(set[kForeground], y, x, grainy(Plate::kForeground, photographed(p)));
            put(set[kCleanPlate], y, x, grainy(Plate::kClean, p.backing));
            put(set[kBackground], y, x, p.background);
            put(set[kColourTrue], y, x, p.colour);
            put(set[kCompTrue], y, x, composited(p));
            set[kGarbage].line(kAlpha, y)[x] = p.garbage;
            set[kAlphaTrue].line(kAlpha, y)[x] = p.alpha;
        }
    };

    std::atomic<int> next{0};
    const auto work = [&] {
        for (int y = next.fetch_add(kBand); y < options.height; y = next.fetch_add(kBand)) {
            if (abort && abort->raised()) return;
            scene.render(y, std::min(y + kBand, options.height), store);
        }
    };
    const int wanted = threads > 0 ? threads : static_cast<int>(std::thread::hardware_concurrency());
    std::vector<std::jthread> helpers;
    for (int i = 1; i < wanted; ++i) helpers.emplace_back(work);
    work();
    helpers.clear();  // joins them
    return set;
}

}  // namespace plate
