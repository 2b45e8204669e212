// A procedural plate set: a figure before an uneven screen, with everything about it known.
//
// A scene is one frame. Its pixels depend on the options and the frame alone, so rows may be rendered by
// any number of threads in any order. Row 0 is the top one.
#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "ZoImage/Render.h"
#include "plates/Backing.h"
#include "plates/Figure.h"
#include "plates/Focus.h"
#include "plates/Hair.h"
#include "shot/image/Image.h"

namespace plate {

struct Options {
    int width = 1920, height = 1080;
    std::uint64_t seed = 1;
    Screen screen = Screen::kGreen;
    Variation vary{};
};

// What a pixel shows of the subject: nothing, all of it, or what made its coverage partial. Clear things such
// as the veil and glasses are kClear.
enum class Region { kBacking, kCore, kEdge, kHair, kMotion, kClear };

// What is true of one pixel. Colours are on the keyer's input scale, where most lie from 0 to 1.
struct Pixel {
    Vec3 colour;    // of the subject, premultiplied, without spill
    Vec3 spill;     // premultiplied: what the screen's light adds to it
    float alpha;    // of the subject
    Vec3 backing;   // the empty set, unshadowed, in the mean light
    float shadow;   // what the subject leaves of the backing's light
    float light;    // on the set in this frame; colour and spill have it
    float garbage;  // 1 where nothing is to be keyed
    Vec3 background;
    Region region;
};

// What a camera without grain sees, and what a perfect key over the background gives.
Vec3 photographed(const Pixel& pixel);
Vec3 composited(const Pixel& pixel);

enum class Plate { kForeground, kClean };
// One channel's grain at a pixel; it grows with the level. The clean plate is averaged and has less.
float grain(const Options& options, Plate plate, int frame, int x, int y, int channel, float level);

class Scene {
  public:
    Scene(const Options& options, int frame);
    // Calls use(y, pixels) for each row from y0 to before y1.
    template <class Use>
    void render(int y0, int y1, Use&& use) const {
        StrandPainter painter(options_.width);
        Focus focus(options_.vary.defocus * placement_.height / 1080.0f, options_.width);
        const auto paint = [&](int y, std::vector<Stack>& row) { paint_subject(y, painter, row); };
        std::vector<Pixel> pixels(static_cast<std::size_t>(options_.width));
        for (int y = y0; y < y1; ++y) {
            set_up_row(y, focus.row(y, paint), pixels);
            use(y, std::as_const(pixels));
        }
    }

  private:
    // Where a pixel lies, in heights: on the frame, and in what a moving camera films.
    Vec2 on_frame(std::size_t x, int y) const;
    Vec2 in_set(std::size_t x, int y) const { return on_frame(x, y) + pose_.pan; }
    Vec2 in_figure(Vec2 p) const { return {look_.mirror * p.x, p.y}; }
    Vec2 in_body(Vec2 p) const { return in_figure(p) - Vec2{look_.centre, 0.0f} - pose_.sway; }
    void paint_subject(int y, StrandPainter& painter, std::vector<Stack>& stacks) const;
    void set_up_row(int y, const std::vector<Stack>& subject, std::vector<Pixel>& pixels) const;
    float shadow(Vec2 p) const;

    Options options_;
    Look look_;
    Pose pose_;
    Placement placement_;
    Body body_;
    Head head_;
    Hair hair_;
    Backing backing_;
    Background background_;
};

// The pictures of one frame, as they are written.
enum Picture {
    kForeground,
    kCleanPlate,
    kBackground,
    kGarbage,
    kAlphaTrue,
    kColourTrue,
    kCompTrue,
    kRegions
};
inline constexpr std::array kPictureNames{"fg",         "cp",         "bg",        "gm",
                                          "alpha_true", "fgcol_true", "comp_true", "regions"};

using Set = std::array<veloxa::Image, kPictureNames.size()>;

// Garbage matte, true alpha and regions (by number) have alpha alone, the others red, green and blue. The
// same for any number of threads; 0 stands for as many as the machine runs at once. Once the flag is raised
// it leaves the rest of the rows undefined.
Set render_set(const Options& options, int frame, int threads, const Zo::Image::AbortFlag* abort = nullptr);

}  // namespace plate
