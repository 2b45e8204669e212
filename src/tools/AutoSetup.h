// Sets a node up from nothing but its foreground: what a compositor would do first, by the same tools. Where
// no screen colour is chosen it looks for the screen first.
//
// All that it looks at is the node's own alpha of the frame that is on its inputs, in tiles. A tile is judged
// together with those around it, for nearer to the subject's outline there may be hair: solid where all are
// all but opaque, backing where none is half opaque, noise where none shows more than a trace. Its steps, in
// order:
//
//   output     matte_scale "linear" and merge "add", which keep thin hair and soft edges
//   overlay    strokes of add_overlay on backing tiles that the clear region leaves out most
//   density    brights as low as leaves the solid tiles as opaque as they are: at the default
//              mixed pixels come out too dense
//   clean-up   gentle, for the same reason and for grain beside the clear region; then strokes of
//              remove_noise on backing tiles that are noisy still
//
// What takes from the solid tiles is taken back. Where there are none the density stays; so does clean-up
// that is on already.
//
// Knobs that are held stay as they are, and the tools turn the others. So does "brights" where a script names
// any knob of the density: a stroke may have found them together. On top of a script the strokes leave what
// is decided as it is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ZoImage/KnobValues.h"
#include "tools/ToolNode.h"

class AutoSetup {
  public:
    explicit AutoSetup(const ToolNode& node);

    // Throws GivenUp. One report a step that changed something; the samples are those of its strokes. A last
    // one, named "auto", notes what was left alone. Where there is no screen, nothing but the report on that.
    std::vector<Zo::Image::ToolReport> run();

  private:
    struct Tile {
        int left() const { return count - clear; }

        Zo::Image::Box box;
        int count = 0;       // of pixels
        int clear = 0;       // of alpha 0
        float least = 1.0f;  // alphas, the tiles around it counted too
        float largest = 0.0f;
    };

    static bool is_noise(const Tile& tile);
    static bool is_unclear(const Tile& tile);

    void render();
    // Row y of the alpha; its columns count as the box's do.
    const float* line_of(int y) const {
        return alpha_.data() + static_cast<std::ptrdiff_t>(y - box_.y) * box_.width() - box_.x;
    }
    Tile tile_at(int x, int y) const;
    std::vector<Tile> tiles() const;
    // The mean opacity of each tile that was solid at first.
    std::vector<double> solidity() const;
    Zo::Image::Knob& knob(std::string_view name) const;
    Zo::Image::KnobValues values() const { return Zo::Image::KnobValues(knobs_); }
    bool scripted() const;
    void step(const char* name, const Zo::Image::KnobValues& before);
    // Whether a knob is held; that is noted.
    bool stays(const std::string& name);
    bool density_stays();
    // False where no screen colour is chosen and none is found.
    bool find_screen();
    void set_up();
    void choose_output();
    // Strokes one after another of the tiles that are wanted now, the one with the most pixels left first.
    template <class Wanted>
    void stroke_tiles(Tool tool, const Wanted& wanted);
    void turn(const char* name, int wanted);
    void lower_density();
    void clean_up();
    // Whether every solid tile is as opaque as before, but for a trace.
    bool keeps_solid(const std::vector<double>& before) const;
    // Whether what was quite transparent, or quite opaque, is so still: a script does not tell where the
    // strokes were that it was made by.
    bool keeps_decided(const std::vector<float>& before) const;

    const ToolNode& node_;
    std::vector<Zo::Image::Knob*> knobs_;
    Zo::Image::Renderer renderer_;
    Zo::Image::Box box_{};
    int side_ = 0;
    std::vector<float> alpha_;
    std::vector<Tile> solid_;
    std::vector<Zo::Image::ToolReport> reports_;
    std::vector<std::string> notes_;
};
