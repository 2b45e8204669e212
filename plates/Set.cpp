#include "plates/Set.h"

#include <algorithm>
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
    return {width, height, look.mirror, head, look.tilt + 1.5f * pose.sway.x, pose.pan};
}

// The part with the largest share of what is seen.
Region region_of(const Stack& s) {
    if (s.alpha <= 0.0f) return Region::kBacking;
    if (s.alpha >= 1.0f) return Region::kCore;
    constexpr Region kOf[] = {Region::kEdge, Region::kHair, Region::kMotion, Region::kClear};  // by Part
    return kOf[std::ranges::max_element(s.shares) - s.shares.begin()];
}

}  // namespace

Vec3 photographed(const Pixel& p) {
    return p.colour + p.spill + p.backing * ((1.0f - p.alpha) * p.shadow * p.light);
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
    return (clean ? 0.35f : 1.0f) * options.vary.grain * sigma *
           normal(key, at * 3u + static_cast<std::uint64_t>(channel));
}

Scene::Scene(const Options& options, int frame)
    : options_(options),
      look_(look_of(options.seed, options.screen, options.vary)),
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

Vec2 Scene::on_frame(std::size_t x, int y) const {
    const float pixel = 1.0f / placement_.height;
    return {(static_cast<float>(x) + 0.5f - 0.5f * placement_.width) * pixel,
            (static_cast<float>(y) + 0.5f) * pixel};
}

void Scene::paint_subject(int y, StrandPainter& painter, std::vector<Stack>& stacks) const {
    const auto body_at = [&](std::size_t x) { return in_body(in_set(x, y)); };
    const auto head_at = [&](std::size_t x) {
        const Vec2 q = rotate(in_figure(in_set(x, y)) - placement_.head, -placement_.tilt);
        return Vec2{q.x / kHeadWidth, q.y / kHeadHeight};
    };
    const float head_pixel = 1.0f / placement_.height / kHeadWidth;
    const auto hair_mass = [&](Stack& stack, float distance, float level) {
        stack.over({look_.hair * level, 0.015f}, coverage(distance, 0.7f * head_pixel), Part::kHair);
    };

    std::ranges::fill(stacks, Stack{});
    for (std::size_t x = 0; x < stacks.size(); ++x)
        hair_mass(stacks[x], hair_behind(look_, head_at(x)), 0.42f);
    painter.paint(hair_.back, y, stacks);
    for (std::size_t x = 0; x < stacks.size(); ++x) {
        body_.torso(body_at(x), stacks[x]);
        body_.veil(body_at(x), stacks[x]);
        body_.neck(body_at(x), stacks[x]);
        head_.face(head_at(x), stacks[x]);
        head_.glasses(head_at(x), stacks[x]);
        hair_mass(stacks[x], hair_cap(look_, head_at(x)), 0.55f);
    }
    painter.paint(hair_.front, y, stacks);
    painter.paint(hair_.loose, y, stacks);
    for (std::size_t x = 0; x < stacks.size(); ++x) body_.arm(body_at(x), stacks[x]);
}

void Scene::set_up_row(int y, const std::vector<Stack>& subject, std::vector<Pixel>& pixels) const {
    // Rims have a spill of 0.2 or so by themselves.
    const float more_spill = 1.0f + options_.vary.spill / 0.2f;
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        const Stack& s = subject[x];
        const Vec2 p = in_set(x, y);
        pixels[x] = {s.colour * pose_.light,
                     look_.backing * (s.spill * more_spill * pose_.light),
                     s.alpha,
                     backing_.colour(p),
                     shadow(in_body(p)),
                     pose_.light,
                     backing_.garbage(p),
                     background_.colour(on_frame(x, y)),
                     region_of(s)};
    }
}

Set render_set(const Options& options, int frame, int threads, const AbortFlag* abort) {
    Info info;
    info.box = info.format.box = {0, 0, options.width, options.height};
    Set set;
    for (std::size_t i = 0; i < set.size(); ++i) {
        info.channels = i == kGarbage || i == kAlphaTrue || i == kRegions ? kMaskAlpha : kMaskRgb;
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
            set[kRegions].line(kAlpha, y)[x] = static_cast<float>(p.region);
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
