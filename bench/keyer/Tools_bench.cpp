// What an artist waits for after a stroke: whole runs of the toolbar's tools, from the first row that is read
// to the last knob that is set, in sessions whose strokes fall where they may.
#include <algorithm>
#include <ctime>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "ZoImage/KnobPanel.h"
#include "keyer/NodeRig.h"
#include "lanes/Lanes.h"
#include "support/Table.h"

namespace bench {

namespace {

using Zo::Image::Box;
using Zo::Image::Knob;

struct Size {
    int width, height;
};
constexpr Size kSizes[]{{1920, 1080}, {4096, 2160}};
constexpr Size kSmall{480, 270};

// Each stroke is followed by one with the other tool elsewhere, so that the lists fill with contradictions.
struct ToolPair {
    const char* tool;
    const char* other;
};
constexpr ToolPair kTools[]{{"screen", "screen"},
                            {"addoverlay", "removeoverlay"},
                            {"removeoverlay", "addoverlay"},
                            {"addmatte", "addmatte"},
                            {"removenoise", "restoreDetail"},
                            {"restorespill", "removespill"},
                            {"removespill", "restorespill"},
                            {"matchcolor", "matchcolor"},
                            {"matchshadow", "matchshadow"},
                            {"holdShadow", "removenoise"},
                            {"restoreDetail", "removenoise"}};

struct StrokeSize {
    const char* name;
    int part;  // of the frame's width and height
};
constexpr StrokeSize kStrokes[]{{"small", 100}, {"large", 2}};

const Plate& plate_of(const Size& size) {
    static std::map<int, Plate> plates;
    const auto [at, is_new] = plates.try_emplace(size.width);
    if (is_new) at->second = make_plate(size.width, size.height);
    return at->second;
}

// A keyer with its panel, the screen picked beside the figure.
class Session {
  public:
    Session(const Plate& plate, bool clean_plate)
        : fg_(plate.fg, 0, 0), cp_(plate.cp, 0, 0), bg_(plate.bg, 0, 0), node_({}), panel_(node_) {
        node_.set_input(0, &fg_);
        if (clean_plate) node_.set_input(1, &cp_);
        node_.set_input(2, &bg_);
        frame_ = plate.fg->info.box;
        const int x = frame_.width() * 2 / 3;
        const int y = frame_.height() * 3 / 4;
        stroke("screen", {x, y - 8, x + 16, y + 8});
    }

    void stroke(const std::string& tool, const Box& box) {
        Knob& button = panel_.get("toolbar_" + tool);
        int value = 4;
        for (const int edge : {box.x, box.y, box.r, box.t}) button.set_value(edge, value++);
        button.changed();
    }

    // The next place; the same in every session.
    Box place(int part) {
        const int width = frame_.width() / part;
        const int height = frame_.height() / part;
        const auto within = [this](int room) {
            return static_cast<int>(random_() % static_cast<unsigned>(room));
        };
        const int x = within(frame_.width() - width + 1);
        const int y = within(frame_.height() - height + 1);
        return {x, y, x + width, y + height};
    }

    // What its strokes came to.
    std::string values() const {
        std::string text;
        for (const auto& knob : panel_.knobs()) {
            if (knob->takes_value()) text += knob->text(true);
        }
        for (const auto& r : node_.tool_reports()) {
            text += std::to_string(r.satisfied) + ' ' + std::to_string(r.unsatisfied) + '\n';
        }
        return text;
    }

  private:
    RowSource fg_, cp_, bg_;
    VeloxaKeyer node_;
    Zo::Image::KnobPanel panel_;
    Box frame_{};
    std::mt19937 random_{7};
};

constexpr int kPairs = 6;

// Milliseconds of processor time that each stroke of the first tool took, ascending. A run keeps to its
// thread, so that this is what a quiet machine's clock would show.
std::vector<double> times_of(Session& session, const ToolPair& pair, int part) {
    std::vector<double> times;
    for (int i = 0; i < kPairs; ++i) {
        const Box box = session.place(part);
        const std::clock_t start = std::clock();
        session.stroke(pair.tool, box);
        times.push_back(1e3 * static_cast<double>(std::clock() - start) /
                        static_cast<double>(CLOCKS_PER_SEC));
        session.stroke(pair.other, session.place(part));
    }
    std::sort(times.begin(), times.end());
    return times;
}

std::string outcome(const ToolPair& pair, bool clean_plate, Lanes form) {
    const Lanes in_use = lanes_in_use();
    use_lanes(form);
    Session session(plate_of(kSmall), clean_plate);
    times_of(session, pair, kStrokes[1].part);
    use_lanes(in_use);
    return session.values();
}

void run_tool(benchmark::State& state, const ToolPair& pair, bool clean_plate, const Size& size) {
    for (auto _ : state) {
        if (outcome(pair, clean_plate, lanes_in_use()) != outcome(pair, clean_plate, Lanes::kScalar)) {
            state.SkipWithError("differs from the scalar form");
            return;
        }
        for (const StrokeSize& stroke : kStrokes) {
            Session session(plate_of(size), clean_plate);
            const std::vector<double> times = times_of(session, pair, stroke.part);
            const std::string suffix = std::string(", ") + stroke.name;
            state.counters["ms" + suffix] = times[times.size() / 2];
            state.counters["longest" + suffix] = times.back();
        }
    }
}

void register_benchmarks() {
    for (const Size& size : kSizes) {
        for (const ToolPair& pair : kTools) {
            const std::string tool = pair.tool;
            for (const bool clean_plate : {false, true}) {
                if (clean_plate && tool != "addoverlay" && tool != "addmatte") continue;
                const std::string name = tool + (clean_plate ? ", clean plate, " : ", ") +
                                         std::to_string(size.width) + " x " + std::to_string(size.height);
                benchmark::RegisterBenchmark(name.c_str(), run_tool, pair, clean_plate, size)->Iterations(1);
            }
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    return bench::run_table(
        argc, argv, "one stroke, processor time",
        {{"ms, small", 1}, {"longest, small", 1}, {"ms, large", 1}, {"longest, large", 1}});
}
