#include "tools/AutoSetup.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "ZoImage/KnobValues.h"
#include "tools/MethodChoice.h"
#include "tools/SpillSetup.h"
#include "tools/ToolRun.h"

using namespace Zo::Image;

namespace {

constexpr int kTilesAcross = 45;  // the frame's shorter side
constexpr int kSmallestTile = 8;

// Where any pixel is more opaque there may be hair before the backing. A strand of it fills less of a tile
// than backing does that the clear region leaves out.
constexpr float kBackingAlpha = 0.5f;
constexpr int kUnclearShare = 60;  // in a hundred

constexpr float kNoiseAlpha = 0.125f;
constexpr int kNoiseShare = 2;

constexpr int kMostStrokes = 8;

// Cloth that the default key does not make quite opaque is of the subject all the same.
constexpr float kSolidAlpha = 0.9f;
// What a step may cost any one solid tile of its mean opacity: no eye tells it apart.
constexpr double kMostLost = 0.01;
constexpr int kLowestBrights = 50;

// In trials on plates of known alpha a strength of 20 took a fifth off the matte's error and nothing off the
// composite; from 50 on the composite suffers.
constexpr int kGentleCleanup = 20;

constexpr int kSpillSamples = 240;    // along the frame's longer side
constexpr float kOpaqueMatte = 1.0f;  // of 255, which is backing

struct Tile {
    int left() const { return count - clear; }

    Box box;
    int count = 0;       // of pixels
    int clear = 0;       // of alpha 0
    float least = 1.0f;  // alphas, the tiles around it counted too
    float largest = 0.0f;
};

bool is_noise(const Tile& tile) {
    return tile.largest <= kNoiseAlpha && tile.left() * 100 >= kNoiseShare * tile.count;
}

bool is_unclear(const Tile& tile) {
    return tile.largest <= kBackingAlpha && tile.left() * 100 >= kUnclearShare * tile.count;
}

class AutoSetup {
  public:
    explicit AutoSetup(const ToolNode& node)
        : node_(node), knobs_(node.panel.valued()), renderer_(node.renderer()) {}

    std::vector<ToolReport> run() {
        // A colour of 0, 0, 0 that is held was meant so.
        if (node_.knobs.screen_color == KnobStorage::Color{} && !knob("screen_color").flag(kKnobHeld)) {
            reports_.push_back(ToolRun(node_).run(Tool::kFindScreen, StrokeAreas()));
            if (!reports_.back().failure.empty()) return std::move(reports_);
        }
        node_.image.validate(true);
        if (node_.image.input(0).info().box.empty()) {
            reports_.emplace_back().tool = "auto";
            reports_.back().failure = "there is no foreground to look at";
            return std::move(reports_);
        }
        step("auto unmix", [this] { choose_method(); });
        if (node_.knobs.unmixes()) {
            tell_notes();
            return std::move(reports_);
        }
        step("auto output", [this] { choose_output(); });
        // The overlay tools change places when the subject is shown.
        stroke_tiles(node_.knobs.shows_subject() ? Tool::kRemoveOverlay : Tool::kAddOverlay,
                     [](const Tile& tile) { return is_noise(tile) || is_unclear(tile); });
        step("auto density", [this] { lower_density(); });
        step("auto clean-up", [this] { clean_up(); });
        stroke_tiles(Tool::kRemoveNoise, is_noise);
        step("auto spill", [this] { spare_spill(); });
        tell_notes();
        return std::move(reports_);
    }

  private:
    void tell_notes() {
        if (notes_.empty()) return;
        ToolReport report;
        report.tool = "auto";
        report.box = box_;
        report.notes = std::move(notes_);
        reports_.push_back(std::move(report));
    }

    // Reports what changed and what the step says, if anything.
    template <class Turn>
    void step(const char* name, const Turn& turn_knobs) {
        const KnobValues before(knobs_);
        turn_knobs();
        ToolReport report;
        report.tool = name;
        report.box = box_;
        report.changes = before.changes();
        report.notes = std::move(said_);
        said_.clear();
        if (!report.changes.empty() || !report.notes.empty()) reports_.push_back(std::move(report));
    }

    void render() {
        Iop& image = node_.image;
        image.validate(true);
        box_ = image.info().box;
        const auto width = static_cast<std::size_t>(box_.width());
        alpha_.resize(width * static_cast<std::size_t>(box_.height()));
        render_or_give_up(renderer_, image, box_, kAlpha, [&](int y, const Row& row) {
            std::copy_n(row[kAlpha], width, alpha_.data() + static_cast<std::size_t>(y - box_.y) * width);
        });
    }

    // Row y of the alpha; its columns count as the box's do.
    const float* line_of(int y) const {
        return alpha_.data() + static_cast<std::ptrdiff_t>(y - box_.y) * box_.width() - box_.x;
    }

    Tile tile_at(int x, int y) const {
        Tile tile;
        tile.box = {x, y, std::min(x + side_, box_.r), std::min(y + side_, box_.t)};
        tile.count = tile.box.width() * tile.box.height();
        for (int row = tile.box.y; row < tile.box.t; ++row) {
            const float* const line = line_of(row);
            for (int column = tile.box.x; column < tile.box.r; ++column) {
                tile.least = std::min(tile.least, line[column]);
                tile.largest = std::max(tile.largest, line[column]);
                tile.clear += line[column] <= 0.0f ? 1 : 0;
            }
        }
        return tile;
    }

    std::vector<Tile> tiles() const {
        std::vector<Tile> alone;
        for (int y = box_.y; y < box_.t; y += side_) {
            for (int x = box_.x; x < box_.r; x += side_) alone.push_back(tile_at(x, y));
        }
        const int across = (box_.width() + side_ - 1) / side_;
        const int up = static_cast<int>(alone.size()) / across;
        const auto number = [&](int x, int y) {
            return static_cast<std::size_t>(y) * static_cast<std::size_t>(across) +
                   static_cast<std::size_t>(x);
        };
        std::vector<Tile> tiles = alone;
        for (int y = 0; y < up; ++y) {
            for (int x = 0; x < across; ++x) {
                Tile& tile = tiles[number(x, y)];
                for (int near_y = std::max(y - 1, 0); near_y <= std::min(y + 1, up - 1); ++near_y) {
                    for (int near_x = std::max(x - 1, 0); near_x <= std::min(x + 1, across - 1); ++near_x) {
                        const Tile& near = alone[number(near_x, near_y)];
                        tile.least = std::min(tile.least, near.least);
                        tile.largest = std::max(tile.largest, near.largest);
                    }
                }
            }
        }
        return tiles;
    }

    // The mean opacity of each tile that was solid at first.
    std::vector<double> solidity() const {
        std::vector<double> means;
        for (const Tile& tile : solid_) {
            double sum = 0.0;
            for (int y = tile.box.y; y < tile.box.t; ++y) {
                const float* const line = line_of(y);
                for (int x = tile.box.x; x < tile.box.r; ++x) sum += static_cast<double>(line[x]);
            }
            means.push_back(sum / tile.count);
        }
        return means;
    }

    // Whether every solid tile is as opaque as before, but for a trace.
    bool keeps_solid(const std::vector<double>& before) const {
        return std::ranges::equal(solidity(), before,
                                  [](double now, double then) { return now >= then - kMostLost; });
    }

    // Whether what was quite transparent, or quite opaque, is so still: a script does not tell where the
    // strokes were that it was made by.
    bool keeps_decided(const std::vector<float>& before) const {
        return std::ranges::equal(alpha_, before, [](float now, float then) {
            return !(then <= 0.0f && now > 0.0f) && !(then >= 1.0f && now < 1.0f);
        });
    }

    Knob& knob(std::string_view name) const {
        return **std::ranges::find_if(knobs_, [&](const Knob* k) { return k->name() == name; });
    }

    bool scripted() const {
        return std::ranges::any_of(knobs_, [](const Knob* k) { return k->flag(kKnobScripted); });
    }

    // Whether a knob is held; that is noted.
    bool stays(const std::string& name) {
        const Knob& held = knob(name);
        if (!held.flag(kKnobHeld)) return false;
        const std::string value = held.kind() == Knob::Kind::kCustom ? "" : " at " + held.text();
        const std::string note = name + " stays" + value + ", as set";
        if (std::ranges::find(notes_, note) == notes_.end()) notes_.push_back(note);
        return true;
    }

    void choose_method() {
        const PlateLook look = look_at_plate(node_, renderer_);
        box_ = node_.image.info().box;
        if (!stays("unmix_method")) {
            std::string reason = difference_asked_for(node_.knobs, knobs_);
            if (reason.empty() && !look.keyable) reason = "unmixing needs more of the backing";
            Knob& method = knob("unmix_method");
            method.set_value(reason.empty() ? 1.0 : 0.0);
            method.changed();
            if (!reason.empty()) said_.push_back("colour difference, as " + reason);
        }
        said_.push_back(look.seen);
    }

    void choose_output() {
        if (!stays("matte_scale")) knob("matte_scale").from_script("linear");
        if (!stays("merge")) knob("merge").from_script("add");
        render();
        side_ = std::max(kSmallestTile, std::min(box_.width(), box_.height()) / kTilesAcross);
        for (const Tile& tile : tiles()) {
            if (tile.least >= kSolidAlpha) solid_.push_back(tile);
        }
    }

    // Strokes one after another of the tiles that are wanted now, the one with the most pixels left first.
    template <class Wanted>
    void stroke_tiles(Tool tool, const Wanted& wanted) {
        std::vector<Tile> found = tiles();
        std::erase_if(found, [&](const Tile& tile) { return !wanted(tile); });
        for (int n = 0; n < kMostStrokes && !found.empty(); ++n) {
            const auto worst = std::ranges::max_element(found, {}, &Tile::left);
            const StrokeAreas area({worst->box});
            found.erase(worst);
            const KnobValues before(knobs_);
            const std::vector<double> solid = solidity();
            const std::vector<float> alpha = alpha_;
            ToolReport report = ToolRun(node_).run(tool, area);
            for (const std::string& name : report.held) stays(name);
            if (!report.held.empty() && report.samples() == 0) return;  // the tool has nothing left to turn
            render();
            if (!keeps_solid(solid) || (scripted() && !keeps_decided(alpha))) {
                before.restore();
                render();
            } else if (!report.changes.empty()) {
                reports_.push_back(std::move(report));
            }
            // What the stroke did for other tiles counts; what it made look like noise does not.
            for (Tile& tile : found) tile.clear = tile_at(tile.box.x, tile.box.y).clear;
            std::erase_if(found, [&](const Tile& tile) { return !wanted(tile); });
        }
    }

    // From where it is, which the solid tiles bear, to the value nearest to `wanted` that they bear too.
    void turn(const char* name, int wanted) {
        Knob& turned = knob(name);
        const std::vector<double> solid = solidity();
        const auto holds = [&](int value) {
            turned.set_value(value);
            turned.changed();
            render();
            return keeps_solid(solid);
        };
        const int good = static_cast<int>(turned.get_value());
        holds(halve(wanted + (wanted < good ? -1 : 1), good, holds));
    }

    void lower_density() {
        if (solid_.empty() || stays("brights")) return;
        for (const char* const name : {"darks", "warm", "cool"}) {
            if (!knob(name).flag(kKnobScripted)) continue;
            notes_.push_back("brights stays at " + knob("brights").text() + ", as the script sets " + name);
            return;
        }
        if (knob("brights").get_value() > kLowestBrights) turn("brights", kLowestBrights);
    }

    void clean_up() {
        Knob& strength = knob("cleanup_cleanup");
        if (stays("cleanup") || node_.knobs.cleanup) return;
        const KnobValues before(knobs_);
        const bool given = stays("cleanup_cleanup");
        const std::vector<double> solid = solidity();
        if (!given) strength.from_script("0");
        knob("cleanup").from_script("1");
        render();
        if (!given) turn("cleanup_cleanup", kGentleCleanup);
        if (strength.get_value() > 0.0 && keeps_solid(solid)) return;
        before.restore();
        render();
    }

    // Opaque pixels, spread over the frame: of solid tiles, and of the others.
    std::array<std::vector<VeloxaSample::Sample>, 2> opaque_colours() {
        const int across = (box_.width() + side_ - 1) / side_;
        const auto tile_of = [&](int x, int y) {
            const int number = (y - box_.y) / side_ * across + (x - box_.x) / side_;
            return static_cast<std::size_t>(number);
        };
        std::vector<bool> solid(tile_of(box_.r - 1, box_.t - 1) + 1);
        for (const Tile& tile : solid_) solid[tile_of(tile.box.x, tile.box.y)] = true;

        const int step = std::max(1, std::max(box_.width(), box_.height()) / kSpillSamples);
        const auto along = [step](int side) {
            const int count = (side - 1) / step + 1;
            return static_cast<std::size_t>(count);
        };
        const std::size_t columns = along(box_.width());
        std::vector<VeloxaSample::Sample> grid(columns * along(box_.height()));
        render_or_give_up(renderer_, node_.output_matte(), box_, kMaskRgba, [&](int y, const Row& row) {
            if ((y - box_.y) % step != 0) return;
            auto* const to = grid.data() + static_cast<std::size_t>((y - box_.y) / step) * columns;
            for (std::size_t i = 0; i < columns; ++i) {
                const std::size_t x = i * static_cast<std::size_t>(step);
                to[i] = {row[kRed][x], row[kGreen][x], row[kBlue][x], row[kAlpha][x]};
            }
        });
        std::array<std::vector<VeloxaSample::Sample>, 2> colours;
        for (std::size_t i = 0; i < grid.size(); ++i) {
            const int x = box_.x + static_cast<int>(i % columns) * step;
            const int y = box_.y + static_cast<int>(i / columns) * step;
            if (!usable(grid[i]) || grid[i][3] > kOpaqueMatte) continue;
            colours[solid[tile_of(x, y)] ? 0 : 1].push_back(grid[i]);
        }
        return colours;
    }

    void spare_spill() {
        if (!node_.knobs.spill_suppression || solid_.empty()) return;
        for (const Knob* const k : knobs_) {
            if (!k->name().starts_with("spill_") || k->kind() == Knob::Kind::kBool) continue;
            if (!k->flag(kKnobScripted)) continue;
            notes_.push_back("spill_warm and spill_cool stay, as the script sets " + k->name());
            return;
        }
        stays("spill_warm");
        stays("spill_cool");
        const auto [deep, rims] = opaque_colours();
        const SpillSetup found = spare_own_colours(
            {node_.knobs, node_.controls, node_.input_flags, node_.panel.held()}, deep, rims);
        if (found.knobs == node_.knobs) return;
        for (const auto& [name, value] : {std::pair("spill_warm", found.knobs.spill_warm),
                                          std::pair("spill_cool", found.knobs.spill_cool)}) {
            Knob& turned = knob(name);
            turned.set_value(static_cast<double>(value));
            turned.changed();
        }
        char text[160];
        std::snprintf(text, sizeof text,
                      "of the colours deep inside %.0f%% changed, now %.0f%%; of what the rims have too "
                      "much of the screen's colour %.0f%% goes",
                      100.0 * found.changed_before, 100.0 * found.changed, 100.0 * (1.0 - found.excess));
        said_.emplace_back(text);
    }

    const ToolNode& node_;
    std::vector<Knob*> knobs_;
    Renderer renderer_;
    Box box_{};
    int side_ = 0;
    std::vector<float> alpha_;
    std::vector<Tile> solid_;
    std::vector<ToolReport> reports_;
    std::vector<std::string> notes_;
    std::vector<std::string> said_;  // by the present step
};

}  // namespace

std::vector<ToolReport> set_up(const ToolNode& node) {
    return AutoSetup(node).run();
}
