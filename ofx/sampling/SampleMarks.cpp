#include "sampling/SampleMarks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

namespace veloxa::ofx {

namespace {

constexpr std::size_t kMostMarks = 800;

template <class Stream>
Stream plain(const std::string& text = {}) {
    Stream stream(text);
    stream.imbue(std::locale::classic());
    return stream;
}

}  // namespace

std::vector<SampleMark> read_marks(const std::string& text) {
    std::vector<SampleMark> marks;
    auto all = plain<std::istringstream>(text);
    for (std::string part; std::getline(all, part, ';');) {
        auto words = plain<std::istringstream>(part);
        SampleMark mark;
        words >> mark.tool >> mark.list;
        for (std::string& number : mark.sample) words >> number;
        words >> mark.time >> mark.place[0] >> mark.place[1];
        for (double& level : mark.colour) words >> level;
        if (words) marks.push_back(mark);
    }
    return marks;
}

std::string write_marks(const std::vector<SampleMark>& marks) {
    auto text = plain<std::ostringstream>();
    text.precision(std::numeric_limits<double>::max_digits10);
    const std::size_t dropped = marks.size() - std::min(marks.size(), kMostMarks);
    for (std::size_t n = dropped; n < marks.size(); ++n) {
        const SampleMark& mark = marks[n];
        text << (n == dropped ? "" : ";") << mark.tool << ' ' << mark.list;
        for (const std::string& number : mark.sample) text << ' ' << number;
        text << ' ' << mark.time << ' ' << mark.place[0] << ' ' << mark.place[1];
        // A number that streams do not read would spoil the mark.
        for (const double level : mark.colour) text << ' ' << (std::isfinite(level) ? level : 0.0);
    }
    return text.str();
}

SampleWords read_samples(const std::string& text) {
    std::string bare = text;
    std::ranges::replace_if(
        bare, [](char c) { return c == '{' || c == '}'; }, ' ');
    auto words = plain<std::istringstream>(bare);
    SampleWords samples;
    for (std::array<std::string, 4> sample; words >> sample[0] >> sample[1] >> sample[2] >> sample[3];) {
        samples.push_back(sample);
    }
    return samples;
}

std::string write_samples(const SampleWords& samples) {
    std::string text;
    for (const auto& sample : samples) {
        for (const std::string& number : sample) text += number + ' ';
    }
    return text;
}

}  // namespace veloxa::ofx
