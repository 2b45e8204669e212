#include "shot/setup/AutoSetup.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "ZoImage/Iop.h"
#include "shot/Errors.h"

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

// While it lives the node's tools leave these knobs alone; later strokes may turn them.
class Hold {
  public:
    explicit Hold(const std::set<Knob*>& knobs) : knobs_(knobs) { hold(true); }
    ~Hold() { hold(false); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

  private:
    void hold(bool on) const {
        for (Knob* const knob : knobs_) knob->set_flag(kKnobHeld, on);
    }

    const std::set<Knob*>& knobs_;
};

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

bool AutoSetup::keeps_decided(const std::vector<float>& before) const {
    return std::equal(alpha_.begin(), alpha_.end(), before.begin(), [](float now, float then) {
        return !(then <= 0.0f && now > 0.0f) && !(then >= 1.0f && now < 1.0f);
    });
}

void AutoSetup::step(const char* name, const KnobValues& before) {
    ToolReport report;
    report.tool = name;
    report.box = box_;
    report.changes = KnobValues(node_.panel()).since(before);
    if (report.changes.empty()) return;
    reports_.push_back(report);
}

bool AutoSetup::stays(const std::string& name) {
    Knob& knob = node_.panel().get(name);
    if (node_.named().count(&knob) == 0) return false;
    const std::string value = knob.kind() == Knob::Kind::kCustom ? "" : " at " + knob.text();
    const std::string note = name + " stays" + value + ", as set";
    if (std::find(notes_.begin(), notes_.end(), note) == notes_.end()) notes_.push_back(note);
    return true;
}

bool AutoSetup::density_stays() {
    if (stays("brights")) return true;
    for (const char* const name : {"darks", "warm", "cool"}) {
        if (node_.scripted().count(&node_.panel().get(name)) == 0) continue;
        notes_.push_back("brights stays at " + node_.panel().get("brights").text() + ", as the script sets " +
                         name);
        return true;
    }
    return false;
}

void AutoSetup::choose_output() {
    if (!stays("matte_scale")) node_.panel().set_from_text("matte_scale", "linear");
    if (!stays("merge")) node_.panel().set_from_text("merge", "add");
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
        const std::vector<float> alpha = alpha_;
        ToolReport report = apply_stroke(node_, {&button, box, {}});
        for (const std::string& name : report.held) stays(name);
        if (!report.held.empty() && report.samples() == 0) return;  // the tool has nothing left to turn
        render();
        if (!keeps_solid(solid) || (!node_.scripted().empty() && !keeps_decided(alpha))) {
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
    if (solid_.empty() || density_stays()) return;
    if (node_.panel().get("brights").get_value() > kLowestBrights) turn("brights", kLowestBrights);
}

void AutoSetup::clean_up() {
    const Knob& cleanup = node_.panel().get("cleanup");
    const Knob& strength = node_.panel().get("cleanup_cleanup");
    if (stays("cleanup") || cleanup.get_value() != 0.0) return;
    const KnobValues before(node_.panel());
    const bool given = stays("cleanup_cleanup");
    const std::vector<double> solid = solidity();
    if (!given) node_.panel().set_from_text("cleanup_cleanup", "0");
    node_.panel().set_from_text("cleanup", "1");
    render();
    if (!given) turn("cleanup_cleanup", kGentleCleanup);
    if (strength.get_value() > 0.0 && keeps_solid(solid)) return;
    before.restore();
    render();
}

std::vector<ToolReport> AutoSetup::run() {
    const Hold hold(node_.named());
    set_up();
    if (!notes_.empty()) {
        ToolReport report;
        report.tool = "auto";
        report.box = box_;
        report.notes = std::move(notes_);
        reports_.push_back(std::move(report));
    }
    return std::move(reports_);
}

void AutoSetup::set_up() {
    KnobValues before(node_.panel());
    choose_output();
    step("auto output", before);
    // The overlay tools change places when the subject is shown.
    const bool subject = node_.panel().get("overlay_mode").text() == "subject";
    stroke_tiles(subject ? "removeoverlay" : "addoverlay",
                 [](const Tile& tile) { return is_noise(tile) || is_unclear(tile); });
    before = KnobValues(node_.panel());
    lower_density();
    step("auto density", before);
    before = KnobValues(node_.panel());
    clean_up();
    step("auto clean-up", before);
    stroke_tiles("removenoise", [](const Tile& tile) { return is_noise(tile); });
}

}  // namespace veloxa
