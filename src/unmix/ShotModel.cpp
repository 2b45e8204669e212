#include "unmix/ShotModel.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>

#include "unmix/Hue.h"
#include "unmix/SpillKernel.h"

namespace {

constexpr std::string_view kHeader = "veloxa-shot";
constexpr int kVersion = 1;
constexpr std::array<std::string_view, 3> kScreens{"red", "green", "blue"};
constexpr std::array<std::string_view, 3> kEncodings{"stored", "srgb", "logarithmic"};
constexpr std::size_t kHueBins = static_cast<std::size_t>(unmix::kHueBins) * unmix::kHueBins;

template <std::size_t N>
std::array<float, N> mean_of(const std::array<double, N>& sums, int count) {
    std::array<float, N> means{};
    for (std::size_t i = 0; i < N; ++i) means[i] = static_cast<float>(sums[i] / count);
    return means;
}

void add_to(ShotModel::Bins& bins, const ShotModel::Bins& other) {
    for (const auto& [bin, count] : other) bins[bin] += count;
}

// The numbers that stand alone in a line, by their names, for reading and writing alike.
template <class Model, class Visit>
void each_number(Model& model, const Visit& visit) {
    visit("sigma", std::span(model.sigma));
    visit("noise", std::span(model.noise));
    visit("colour", std::span(model.colour));
    visit("spill", std::span(&model.spill, 1));
    visit("base_red", std::span(model.base[0]));
    visit("base_green", std::span(model.base[1]));
    visit("base_blue", std::span(model.base[2]));
}

template <class Model, class Visit>
void each_count(Model& model, const Visit& visit) {
    visit("frames", model.frames, 1);
    visit("base_frames", model.base_frames, 0);
    visit("spill_frames", model.spill_frames, 0);
    visit("width", model.width, 1);
    visit("height", model.height, 1);
}

void append(std::string& text, double v) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), v).ptr;
    text += ' ';
    text.append(digits.data(), end);
}

template <class Values>
void append_all(std::string& text, const Values& values) {
    for (const double v : values) append(text, v);
}

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text) {}

    std::string read(ShotModel& model) {
        while (fault_.empty() && next_line()) {
            if (!headed_) {
                read_header();
            } else {
                read_entry();
            }
        }
        if (fault_.empty() && !headed_) expect("'veloxa-shot 1' is");
        if (fault_.empty()) check_whole();
        if (fault_.empty()) model = std::move(found_);
        return fault_;
    }

  private:
    // Splits the next line that holds any words; false at the end.
    bool next_line() {
        words_.clear();
        while (!text_.empty() && words_.empty()) {
            const std::size_t end = std::min(text_.find('\n'), text_.size());
            std::string_view line = text_.substr(0, end);
            text_.remove_prefix(std::min(end + 1, text_.size()));
            ++line_;
            line = line.substr(0, line.find('#'));
            for (std::size_t at = 0; at < line.size();) {
                const std::size_t from = line.find_first_not_of(" \t\r", at);
                if (from == line.npos) break;
                at = std::min(line.find_first_of(" \t\r", from), line.size());
                words_.push_back(line.substr(from, at - from));
            }
        }
        return !words_.empty();
    }

    // Of the words, the first of which is the name.
    void expect(const std::string& what) {
        std::string got;
        for (const std::string_view word : words_) {
            for (const char c : word.substr(0, 40)) got += c >= ' ' && c != '\'' && c <= '~' ? c : '?';
            got += ' ';
            if (got.size() > 60) break;
        }
        if (!got.empty()) got.pop_back();
        fault_ = "line " + std::to_string(line_) + ": " + what + " expected; " +
                 (got.empty() ? "the text ends" : "got '" + got + "'");
    }

    template <class Number>
    bool take(std::size_t at, Number& number) const {
        const std::string_view word = words_[at];
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        return error == std::errc() && end == word.data() + word.size();
    }

    static std::string finite(std::size_t count) {
        return count == 1 ? "a finite number is" : std::to_string(count) + " finite numbers are";
    }

    bool take_finite(std::size_t at, std::span<double> numbers) const {
        if (words_.size() != at + numbers.size()) return false;
        for (double& v : numbers) {
            if (!take(at++, v) || !std::isfinite(v)) return false;
        }
        return true;
    }

    void read_header() {
        int version = 0;
        headed_ = words_.size() == 2 && words_[0] == kHeader && take(1, version) && version == kVersion;
        if (!headed_) expect("'veloxa-shot 1' is");
    }

    void read_entry() {
        const std::string_view name = words_[0];
        if (name == "rim") return read_rim();
        if (name == "hue") return read_bin(found_.hue, kHueBins);
        if (name == "own") return read_bin(found_.own, SpillGrid::kSize);
        if (std::ranges::find(given_, name) != given_.end()) {
            return expect("a name that no line before has is");
        }
        given_.push_back(name);
        bool known = read_word(name);
        each_count(found_, [&](std::string_view own, int& count, int least) {
            if (name != own) return;
            known = true;
            if (words_.size() != 2 || !take(1, count) || count < least) {
                expect("a whole number of " + std::to_string(least) + " or more is");
            }
        });
        each_number(found_, [&](std::string_view own, std::span<double> numbers) {
            if (name != own) return;
            known = true;
            if (!take_finite(1, numbers)) expect(finite(numbers.size()));
        });
        if (!known) expect("the name of something that a shot has is");
    }

    bool read_word(std::string_view name) {
        if (name != "screen" && name != "encoding") return false;
        const auto& choices = name == "screen" ? kScreens : kEncodings;
        const auto chosen = words_.size() == 2 ? std::ranges::find(choices, words_[1]) : choices.end();
        if (chosen == choices.end()) {
            expect("one of " + std::string(choices[0]) + ", " + std::string(choices[1]) + ", " +
                   std::string(choices[2]) + " is");
            return true;
        }
        const auto index = static_cast<std::int32_t>(chosen - choices.begin());
        if (name == "screen") found_.screen = index;
        if (name == "encoding") found_.encoding = static_cast<Encoding>(index);
        return true;
    }

    void read_rim() {
        std::array<double, 10> v{};
        if (found_.rims.size() == ShotModel::kMostRims) return expect("no more than 8 rims are");
        if (!take_finite(1, v) || v[0] < 2.0) {
            return expect("a count of 2 or more and 9 finite numbers are");
        }
        unmix::ColourGroup& group = found_.rims.emplace_back();
        group.count = v[0];
        std::copy_n(v.begin() + 1, 3, group.mean.begin());
        std::copy_n(v.begin() + 4, 6, group.covariance.begin());
    }

    void read_bin(ShotModel::Bins& bins, std::size_t count) {
        std::size_t bin = 0;
        std::array<double, 1> v{};
        const bool good =
            words_.size() == 3 && take(1, bin) && bin < count && take_finite(2, v) && v[0] > 0.0;
        if (!good || !bins.emplace(bin, v[0]).second) {
            expect("a new bin below " + std::to_string(count) + " and a number above 0 are");
        }
    }

    void check_whole() {
        words_.clear();
        const auto need = [&](std::string_view name) {
            if (fault_.empty() && std::ranges::find(given_, name) == given_.end()) {
                expect("'" + std::string(name) + "' is");
            }
        };
        need("screen");
        need("encoding");
        each_count(found_, [&](std::string_view name, int, int) { need(name); });
        each_number(found_, [&](std::string_view name, std::span<double>) { need(name); });
        const bool more = found_.base_frames > found_.frames || found_.spill_frames > found_.frames;
        if (fault_.empty() && more) expect("no more base_frames or spill_frames than frames are");
    }

    std::string_view text_;
    int line_ = 0;
    bool headed_ = false;
    std::vector<std::string_view> words_;
    std::vector<std::string_view> given_;
    std::string fault_;
    ShotModel found_;
};

}  // namespace

void ShotModel::add(const ShotModel& later) {
    const int before = frames;
    each_number(*this, [&](std::string_view name, std::span<double> sums) {
        each_number(later, [&](std::string_view same, std::span<const double> more) {
            if (name != same) return;
            for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += more[i];
        });
    });
    frames += later.frames;
    base_frames += later.base_frames;
    spill_frames += later.spill_frames;
    if (before == 0) {
        screen = later.screen;
        encoding = later.encoding;
        width = later.width;
        height = later.height;
    }
    add_to(hue, later.hue);
    add_to(own, later.own);
    rims.insert(rims.end(), later.rims.begin(), later.rims.end());
    unmix::join_groups(rims, kMostRims);
}

std::optional<std::array<float, 3>> ShotModel::mean_sigma(const unmix::FrameScale& scale) const {
    if (scale.width != width || scale.height != height) return std::nullopt;
    return mean_of(sigma, frames);
}

std::optional<unmix::Covariance> ShotModel::mean_noise(const unmix::FrameScale& scale) const {
    if (scale.width != width || scale.height != height) return std::nullopt;
    return mean_of(noise, frames);
}

std::array<float, 3> ShotModel::mean_colour() const {
    return mean_of(colour, frames);
}

std::optional<float> ShotModel::mean_spill() const {
    if (spill_frames == 0) return std::nullopt;
    return static_cast<float>(spill / spill_frames);
}

std::optional<unmix::FrameCubic::Form> ShotModel::mean_base() const {
    if (base_frames == 0) return std::nullopt;
    unmix::FrameCubic::Form form;
    for (std::size_t c = 0; c < 3; ++c) {
        form.low[c] = static_cast<float>(base[c][0] / base_frames);
        form.high[c] = static_cast<float>(base[c][1] / base_frames);
        for (std::size_t i = 0; i < unmix::FrameCubic::kTerms; ++i) {
            form.coefficients[c][i] = base[c][2 + i] / base_frames;
        }
    }
    return form;
}

std::vector<double> ShotModel::hue_counts() const {
    std::vector<double> counts(kHueBins, 0.0);
    for (const auto& [bin, count] : hue) counts[bin] = count;
    return counts;
}

std::vector<float> ShotModel::own_counts() const {
    if (own.empty()) return {};
    std::vector<float> counts(SpillGrid::kSize, 0.0f);
    for (const auto& [bin, weight] : own) counts[bin] = static_cast<float>(weight / frames);
    return counts;
}

std::string ShotModel::text() const {
    std::string text = std::string(kHeader) + ' ' + std::to_string(kVersion) + "\n# sums over the frames\n";
    text += "screen " + std::string(kScreens[static_cast<std::size_t>(screen)]) + '\n';
    text += "encoding " + std::string(kEncodings[static_cast<std::size_t>(encoding)]) + '\n';
    each_count(*this, [&](std::string_view name, int count, int) {
        text += std::string(name) + ' ' + std::to_string(count) + '\n';
    });
    each_number(*this, [&](std::string_view name, std::span<const double> numbers) {
        text += name;
        append_all(text, numbers);
        text += '\n';
    });
    text += "# cells, mean colour, covariance: rr rg rb gg gb bb\n";
    for (const unmix::ColourGroup& group : rims) {
        text += "rim";
        append(text, group.count);
        append_all(text, group.mean);
        append_all(text, group.covariance);
        text += '\n';
    }
    const auto list = [&](const char* name, const Bins& bins) {
        for (const auto& [bin, count] : bins) {
            text += name + (' ' + std::to_string(bin));
            append(text, count);
            text += '\n';
        }
    };
    text += "# bin, weight\n";
    list("hue", hue);
    list("own", own);
    return text;
}

std::string read_shot_model(std::string_view text, ShotModel& model) {
    return Reader(text).read(model);
}
