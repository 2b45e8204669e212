#include "AutoSetup.h"

#include <algorithm>
#include <cstdlib>

#include "Errors.h"
#include "ZoImage/Iop.h"

namespace veloxa {

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

}  // namespace

bool AutoSetup::is_noise(const Tile& tile) {
    return tile.largest <= kNoiseAlpha && tile.left() * 100 >= kNoiseShare * tile.count;
}

bool AutoSetup::is_unclear(const Tile& tile) {
    return tile.largest <= kBackingAlpha && tile.left() * 100 >= kUnclearShare * tile.count;
}

AutoSetup::AutoSetup(Node& node, int threads, const AbortFlag* abort)
    : node_(node), renderer_(threads, abort), abort_(abort) {}

void AutoSetup::render() {
    Iop& image = node_.image();
    image.validate(true);
    box_ = image.info().box;
    const auto width = static_cast<std::size_t>(box_.width());
    alpha_.resize(width * static_cast<std::size_t>(box_.height()));
    const bool complete = renderer_.render(image, box_, kAlpha, [&](int y, const Row& row) {
        std::copy_n(row[kAlpha], width, alpha_.data() + static_cast<std::size_t>(y - box_.y) * width);
    });
    if (abort_ != nullptr && abort_->raised()) throw Interrupted();
    if (!complete) throw Error("the frame could not be rendered");
}

AutoSetup::Tile AutoSetup::tile_at(int x, int y) const {
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

std::vector<AutoSetup::Tile> AutoSetup::tiles() const {
    std::vector<Tile> alone;
    for (int y = box_.y; y < box_.t; y += side_) {
        for (int x = box_.x; x < box_.r; x += side_) alone.push_back(tile_at(x, y));
    }
    const int across = (box_.width() + side_ - 1) / side_;
    const int up = static_cast<int>(alone.size()) / across;
    const auto number = [&](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(across) + static_cast<std::size_t>(x);
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

std::vector<double> AutoSetup::solidity() const {
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

bool AutoSetup::keeps_solid(const std::vector<double>& before) const {
    const std::vector<double> now = solidity();
    return std::equal(now.begin(), now.end(), before.begin(),
                      [](double a, double b) { return a >= b - kMostLost; });
}

void AutoSetup::step(const char* name, const KnobValues& before) {
    ToolReport report;
    report.tool = name;
    report.box = box_;
    report.changes = KnobValues(node_.panel()).since(before);
    if (report.changes.empty()) return;
    reports_.push_back(report);
}

void AutoSetup::choose_output() {
    node_.panel().set_from_text("matte_scale", "linear");
    node_.panel().set_from_text("merge", "add");
    render();
    side_ = std::max(kSmallestTile, std::min(box_.width(), box_.height()) / kTilesAcross);
    for (const Tile& tile : tiles()) {
        if (tile.least >= kSolidAlpha) solid_.push_back(tile);
    }
}

template <class Wanted>
void AutoSetup::stroke_tiles(const char* tool, const Wanted& wanted) {
    Knob& button = tool_named(node_.panel(), tool);
    std::vector<Tile> found = tiles();
    std::erase_if(found, [&](const Tile& tile) { return !wanted(tile); });
    for (int n = 0; n < kMostStrokes && !found.empty(); ++n) {
        const auto worst = std::max_element(found.begin(), found.end(),
                                            [](const Tile& a, const Tile& b) { return a.left() < b.left(); });
        const Box box = worst->box;
        found.erase(worst);
        const KnobValues before(node_.panel());
        const std::vector<double> solid = solidity();
        ToolReport report = apply_stroke(node_, {&button, box, {}});
        render();
        if (!keeps_solid(solid)) {
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
void AutoSetup::turn(const char* name, int wanted) {
    Knob& knob = node_.panel().get(name);
    const std::vector<double> solid = solidity();
    const auto holds = [&](int value) {
        knob.set_value(value);
        knob.changed();
        render();
        return keeps_solid(solid);
    };
    int good = static_cast<int>(knob.get_value());
    int bad = wanted + (wanted < good ? -1 : 1);
    while (std::abs(good - bad) > 1) {
        const int middle = bad + (good - bad) / 2;
        (holds(middle) ? good : bad) = middle;
    }
    holds(good);
}

void AutoSetup::lower_density() {
    const bool higher = node_.panel().get("brights").get_value() > kLowestBrights;
    if (!solid_.empty() && higher) turn("brights", kLowestBrights);
}

void AutoSetup::clean_up() {
    Knob& cleanup = node_.panel().get("cleanup");
    if (cleanup.get_value() != 0.0) return;
    const KnobValues before(node_.panel());
    node_.panel().set_from_text("cleanup_cleanup", "0");
    node_.panel().set_from_text("cleanup", "1");
    render();
    turn("cleanup_cleanup", kGentleCleanup);
    if (node_.panel().get("cleanup_cleanup").get_value() > 0.0) return;
    before.restore();
    render();
}

std::vector<ToolReport> AutoSetup::run() {
    KnobValues before(node_.panel());
    choose_output();
    step("auto output", before);
    stroke_tiles("addoverlay", [](const Tile& tile) { return is_noise(tile) || is_unclear(tile); });
    before = KnobValues(node_.panel());
    lower_density();
    step("auto density", before);
    before = KnobValues(node_.panel());
    clean_up();
    step("auto clean-up", before);
    stroke_tiles("removenoise", [](const Tile& tile) { return is_noise(tile); });
    return std::move(reports_);
}

}  // namespace veloxa
