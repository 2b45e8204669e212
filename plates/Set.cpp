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

Placement place(const Options& options, const Look& look, const Pose& pose) {
    const auto width = static_cast<float>(options.width), height = static_cast<float>(options.height);
    const Vec2 head = Vec2{look.centre, 0.395f} + pose.sway;
    return {width, height, look.mirror, head, look.tilt + 1.5f * pose.sway.x};
}

}  // namespace

Vec3 photographed(const Pixel& p) {
    return p.colour + p.spill + p.backing * ((1.0f - p.alpha) * p.shadow);
}

Vec3 composited(const Pixel& p) {
    return p.colour + p.background * ((1.0f - p.alpha) * p.shadow);
}

float grain(const Options& options, Plate plate, int frame, int x, int y, int channel, float level) {
    const bool clean = plate == Plate::kClean;
    // The clean plate is one picture, whatever the frame.
    const std::uint64_t key =
        key_of(options.seed, clean ? 3u : 0x100000000u + static_cast<std::uint32_t>(frame));
    const auto at = static_cast<std::uint64_t>(y) * static_cast<std::uint64_t>(options.width) +
                    static_cast<std::uint64_t>(x);
    const float sigma = 0.006f * (0.55f + 0.60f * std::sqrt(std::max(level, 0.0f)));
    return (clean ? 0.35f : 1.0f) * sigma * normal(key, at * 3u + static_cast<std::uint64_t>(channel));
}

Scene::Scene(const Options& options, int frame)
    : options_(options),
      look_(look_of(options.seed, options.screen)),
      pose_(pose_of(look_, frame)),
      placement_(place(options, look_, pose_)),
      body_(look_, pose_, 1.0f / placement_.height),
      head_(look_, 1.0f / placement_.height),
      hair_(grow_hair(look_, pose_, placement_)),
      backing_(look_, 0.5f * placement_.width / placement_.height),
      background_(look_) {}

// The subject stands close to the screen: its lower part shades it, to the side away from the key light.
float Scene::shadow(Vec2 p) const {
    if (p.y < 0.4f) return 1.0f;
    const float near = smooth(0.13f, -0.06f, body_.outline({p.x - 0.055f, p.y - 0.012f}));
    return 1.0f - 0.36f * near * smooth(0.46f, 0.86f, p.y);
}

void Scene::render_row(int y, StrandPainter& painter, std::vector<Stack>& stacks,
                       std::vector<Pixel>& pixels) const {
    const float pixel = 1.0f / placement_.height;
    const float v = (static_cast<float>(y) + 0.5f) * pixel;
    const auto frame_u = [&](std::size_t i) {
        return (static_cast<float>(i) + 0.5f - 0.5f * placement_.width) * pixel;
    };
    const auto figure = [&](std::size_t i) { return Vec2{look_.mirror * frame_u(i), v}; };
    const auto body_at = [&](std::size_t i) { return figure(i) - Vec2{look_.centre, 0.0f} - pose_.sway; };
    const auto head_at = [&](std::size_t i) {
        const Vec2 q = rotate(figure(i) - placement_.head, -placement_.tilt);
        return Vec2{q.x / kHeadWidth, q.y / kHeadHeight};
    };
    const float head_pixel = pixel / kHeadWidth;
    const auto hair_mass = [&](Stack& stack, float distance, float level) {
        stack.over({look_.hair * level, 0.015f}, coverage(distance, 0.7f * head_pixel));
    };

    stacks.assign(pixels.size(), Stack{});
    for (std::size_t i = 0; i < pixels.size(); ++i)
        hair_mass(stacks[i], hair_behind(look_, head_at(i)), 0.42f);
    painter.paint(hair_.back, y, stacks);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        body_.torso(body_at(i), stacks[i]);
        body_.veil(body_at(i), stacks[i]);
        body_.neck(body_at(i), stacks[i]);
        head_.face(head_at(i), stacks[i]);
        head_.glasses(head_at(i), stacks[i]);
        hair_mass(stacks[i], hair_cap(look_, head_at(i)), 0.55f);
    }
    painter.paint(hair_.front, y, stacks);
    painter.paint(hair_.loose, y, stacks);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        body_.arm(body_at(i), stacks[i]);
        const Vec2 p{frame_u(i), v};
        const Stack& s = stacks[i];
        const Vec3 backing = backing_.colour(p);
        pixels[i] = {s.colour,
                     look_.backing * s.spill,
                     s.alpha,
                     backing,
                     shadow(body_at(i)),
                     backing_.garbage(p),
                     background_.colour(p)};
    }
}

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
