#include "panel/VeloxaSample.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "ZoImage/GeneralTile.h"
#include "ZoImage/Knob.h"

using namespace Zo::Image;

namespace {

float narrowed(double value) {
    constexpr double kLargest = std::numeric_limits<float>::max();
    if (value > kLargest) return std::numeric_limits<float>::infinity();
    if (value < -kLargest) return -std::numeric_limits<float>::infinity();
    return static_cast<float>(value);
}

}  // namespace

void VeloxaSample::append(const Sample& sample) {
    if (samples_->size() == kCapacity) samples_->erase(samples_->begin());
    samples_->push_back(sample);
}

int VeloxaSample::add_point(const Sample& sample, int x, int y, int r, int t) {
    if (r <= x || t <= y) return 0;
    begin_change();
    const std::int64_t width = std::int64_t{r} - x;
    const std::int64_t height = std::int64_t{t} - y;
    // Beyond the capacity the list is full of this sample already.
    constexpr auto kFull = static_cast<std::int64_t>(kCapacity);
    const std::int64_t copies = std::min(std::min(width, kFull) * std::min(height, kFull), kFull);
    for (std::int64_t i = 0; i < copies; ++i) append(sample);
    end_change();
    return 1;
}

int VeloxaSample::add_area(Iop& source, int x, int y, int r, int t) {
    const Box area{x, y, r, t};
    return add_areas(source, {&area, 1});
}

int VeloxaSample::add_areas(Iop& source, std::span<const Box> areas) {
    constexpr std::array<Channel, 4> kChannels{kRed, kGreen, kBlue, kAlpha};
    Sample mean{};
    std::int64_t pixels = 0;
    for (const Box& area : areas) {
        if (area.empty()) continue;
        source.validate(true);
        source.request(area.x, area.y, area.r, area.t, channels_, 1);
        const auto add = [&](std::size_t, int, const Row& row) {
            for (std::size_t i = 0; i < kChannels.size(); ++i) {
                const float* const line = row[kChannels[i]];
                for (int column = 0; column < area.width(); ++column) mean[i] += line[column];
            }
        };
        const RowSource from{&source, channels_};
        if (!fetch_rows({&from, 1}, area, nullptr, add)) return 0;
        pixels += std::int64_t{area.width()} * area.height();
    }
    if (pixels == 0) return 0;
    for (float& value : mean) value /= static_cast<float>(pixels);
    begin_change();
    append(mean);
    end_change();
    return 1;
}

VeloxaSample::Sample VeloxaSample::average() const {
    Sample mean{};
    if (samples_->empty()) return mean;
    for (const Sample& sample : *samples_) {
        for (std::size_t i = 0; i < 3; ++i) mean[i] += sample[i];
    }
    for (std::size_t i = 0; i < 3; ++i) mean[i] /= static_cast<float>(samples_->size());
    return mean;
}

void VeloxaSample::write(std::ostream& out, bool quote) const {
    if (quote) out << "{ ";
    for (const Sample& sample : *samples_) {
        for (const float value : sample) out << value << ' ';
    }
    if (quote) out << " }";
}

bool VeloxaSample::read(std::string_view text) {
    std::vector<std::string> words;
    Knob::Script_List(text, words);
    if (words.size() % 4 != 0) return false;
    samples_->clear();
    for (std::size_t i = 0; i < words.size(); i += 4) {
        Sample sample;
        for (std::size_t c = 0; c < 4; ++c) {
            double value = 0.0;
            if (!Knob::to_double(words[i + c], value)) return false;
            sample[c] = narrowed(value);
        }
        append(sample);
    }
    return true;
}

int decimate(int x, int y, int r, int t, int& step_x, int& step_y) {
    step_x = 1;
    step_y = 1;
    if (r <= x || t <= y) return 0;
    // Unsigned, so that the product of any two sides fits.
    const auto width = static_cast<std::uint64_t>(std::int64_t{r} - x);
    const auto height = static_cast<std::uint64_t>(std::int64_t{t} - y);
    if (width * height < kMostPositions) return static_cast<int>(width * height);
    const auto steps = [](std::uint64_t side, int step) {
        const auto n = static_cast<std::uint64_t>(step);
        return (side + n - 1) / n;
    };
    while (true) {
        if (std::int64_t{y} + step_y < t) ++step_y;
        const std::uint64_t rows = steps(height, step_y);
        if (steps(width, step_x) * rows < kMostPositions) return static_cast<int>(rows);
        if (std::int64_t{x} + step_x < r) ++step_x;
        const std::uint64_t columns = steps(width, step_x);
        if (columns * rows < kMostPositions) return static_cast<int>(columns);
    }
}
