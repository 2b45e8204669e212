#include <algorithm>
#include <charconv>
#include <cmath>

#include "ZoImage/Knob.h"
#include "ZoImage/Script.h"
#include "shot/Errors.h"
#include "shot/mattes/DrawnMatte.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kClassName = "Matte";
constexpr double kFarthest = 1e6;  // of a point, in pixels; a slip of the hand is beyond

std::string text_of(double number) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

class Reader {
  public:
    Reader(const ScriptGroup& group, const std::string& file) : group_(group), file_(file) {}

    DrawnMatte read() {
        for (const ScriptEntry& entry : group_.entries) take(entry);
        if (matte_.points.empty()) fail(group_.line, "a matte needs its points");
        return std::move(matte_);
    }

  private:
    [[noreturn]] void fail(int line, const std::string& what) const { throw ScriptError(file_, line, what); }

    void take(const ScriptEntry& entry) {
        if (entry.name == "kind") {
            matte_.kind = is_second(entry, "garbage", "holdout") ? DrawnMatte::Kind::kHoldout
                                                                 : DrawnMatte::Kind::kGarbage;
        } else if (entry.name == "side") {
            matte_.outside = is_second(entry, "inside", "outside");
        } else if (entry.name == "feather") {
            const std::vector<double> feather = numbers(entry);
            if (feather.size() != 1 || feather[0] < 0.0) {
                fail(entry.line, "feather is a number of pixels, 0 or more; got " + entry.text);
            }
            matte_.feather = feather[0];
        } else if (entry.name == "points") {
            take_points(entry);
        } else {
            fail(entry.line,
                 "'" + entry.name + "' is nothing of a matte; there are kind, side, feather, points");
        }
    }

    bool is_second(const ScriptEntry& entry, const std::string& first, const std::string& second) const {
        if (entry.text != first && entry.text != second) {
            fail(entry.line, entry.name + " is " + first + " or " + second + "; got " + entry.text);
        }
        return entry.text == second;
    }

    void take_points(const ScriptEntry& entry) {
        const std::vector<double> values = numbers(entry);
        if (values.size() % 2 != 0 || values.size() < 6) {
            fail(entry.line, "points are x and y of three corners or more; got " +
                                 std::to_string(values.size()) + " numbers");
        }
        for (std::size_t i = 0; i < values.size(); i += 2) {
            matte_.points.push_back({values[i], values[i + 1]});
        }
    }

    std::vector<double> numbers(const ScriptEntry& entry) const {
        std::vector<std::string> words;
        Knob::Script_List(entry.text, words);
        std::vector<double> values;
        for (const std::string& word : words) {
            double value = 0.0;
            if (!Knob::to_double(word, value) || !(std::abs(value) <= kFarthest)) {
                fail(entry.line, entry.name + ": a number within 1000000 pixels is expected; got " + word);
            }
            values.push_back(value);
        }
        return values;
    }

    const ScriptGroup& group_;
    const std::string& file_;
    DrawnMatte matte_;
};

}  // namespace

std::string mattes_script(const DrawnMattes& mattes) {
    std::string out;
    for (const DrawnMatte& matte : mattes) {
        if (!is_drawn(matte, matte.kind)) continue;
        const bool garbage = matte.kind == DrawnMatte::Kind::kGarbage;
        out += std::string(kClassName) + " {\n    kind " + (garbage ? "garbage" : "holdout") + "\n    side " +
               (matte.outside ? "outside" : "inside") + "\n    feather " + text_of(matte.feather) +
               "\n    points {";
        for (const auto& [x, y] : matte.points) {
            out += (out.back() == '{' ? "" : " ") + text_of(x) + ' ' + text_of(y);
        }
        out += "}\n}\n";
    }
    return out;
}

DrawnMattes read_mattes(const std::string& text, const std::string& file) try {
    DrawnMattes mattes;
    for (const ScriptGroup& group : read_script(text, file)) {
        if (group.class_name == kClassName) mattes.push_back(Reader(group, file).read());
    }
    return mattes;
} catch (const ScriptError& error) {
    throw Error(error.what());
}

}  // namespace veloxa
