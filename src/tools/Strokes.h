// What a tool remembers of its strokes: a list of samples for its solver, oldest first, and every pixel of
// the latest strokes, by which the solver's answer is judged. What the answer leaves out joins the list:
// before the newest stroke's own samples, or before all others where an older stroke's pixel is no longer as
// asked.
//
// A stroke that is repeated takes the place of the earlier one, so nothing new is asked.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "tools/AddMatteAnalysis.h"
#include "tools/OverlayAnalysis.h"
#include "tools/SpillAnalysis.h"
#include "tools/StrokePixels.h"

// Appends, dropping the oldest beyond the capacity.
template <class T>
void remember(std::vector<T>& list, const T& item) {
    if (list.size() == VeloxaSample::kCapacity) list.erase(list.begin());
    list.push_back(item);
}

inline const VeloxaSample::Sample& color_of(const OverlaySample& s) {
    return s.fg;
}
inline const VeloxaSample::Sample& color_of(const PlatedSample& s) {
    return s.fg;
}
inline const VeloxaSample::Sample& color_of(const SpillSample& s) {
    return s.keyed;
}

template <class T>
class Strokes {
  public:
    const std::vector<T>& samples() const { return samples_; }

    void begin(std::vector<T> pixels) {
        std::erase_if(pixels_, [&](const Pixels& earlier) { return *earlier == pixels; });
        if (pixels_.size() == kKept) pixels_.erase(pixels_.begin());
        const std::vector<std::size_t> picks = extremes_of(pixels);
        for (const std::size_t i : picks) remember(samples_, pixels[i]);
        newest_ = samples_.size() - picks.size();
        pixels_.push_back(std::make_shared<const std::vector<T>>(std::move(pixels)));
    }

    // More that the newest stroke asks for.
    void extend(const std::vector<T>& pixels) {
        std::vector<T> more = *pixels_.back();
        more.insert(more.end(), pixels.begin(), pixels.end());
        pixels_.back() = std::make_shared<const std::vector<T>>(std::move(more));
    }

    // Takes in a few pixels that do not say what was asked; false where there are none, or none that is not
    // in the list already. `agrees` tells of each pixel of a list whether it does.
    template <class Agrees>
    bool take_missed(const Agrees& agrees) {
        for (std::size_t n = pixels_.size(); n-- > 0;) {
            const std::vector<T> missed = left(*pixels_[n], agrees);
            std::vector<std::size_t> picks = extremes_of(missed);
            for (std::size_t i = 0; i < std::min(kSpread, missed.size()); ++i) {
                picks.push_back(i * missed.size() / kSpread);
            }
            std::size_t taken = 0;
            for (const std::size_t i : picks) {
                if (taken == kTaken) break;
                if (std::find(samples_.begin(), samples_.end(), missed[i]) != samples_.end()) continue;
                take_in(missed[i], n + 1 == pixels_.size());
                ++taken;
            }
            if (taken > 0) return true;
        }
        return false;
    }

    // How many pixels of the newest stroke do not say what was asked.
    template <class Agrees>
    std::size_t unsatisfied(const Agrees& agrees) const {
        return pixels_.empty() ? 0 : left(*pixels_.back(), agrees).size();
    }

    // Forgets the strokes of which `drop` holds.
    template <class Drop>
    void forget(const Drop& drop) {
        std::erase_if(samples_, drop);
        std::erase_if(pixels_,
                      [&](const Pixels& stroke) { return stroke->empty() || drop(stroke->front()); });
    }

    // Those of the pixels that do not say what was asked.
    template <class Agrees>
    static std::vector<T> left(const std::vector<T>& pixels, const Agrees& agrees) {
        const std::vector<bool> right = agrees(pixels);
        std::vector<T> missed;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            if (!right[i]) missed.push_back(pixels[i]);
        }
        return missed;
    }

  private:
    using Pixels = std::shared_ptr<const std::vector<T>>;  // of a stroke; copies of all this share them
    static constexpr std::size_t kKept = 8;                // strokes of some 16,000 pixels at most
    // Few at a time, or one stroke would push the others out of the list.
    static constexpr std::size_t kTaken = 4;
    static constexpr std::size_t kSpread = 6;

    static std::vector<std::size_t> extremes_of(const std::vector<T>& pixels) {
        std::vector<VeloxaSample::Sample> colors;
        colors.reserve(pixels.size());
        for (const T& pixel : pixels) colors.push_back(color_of(pixel));
        return extremes(colors);
    }

    void take_in(const T& item, bool newest) {
        if (samples_.size() == VeloxaSample::kCapacity) {
            samples_.erase(samples_.begin());
            newest_ -= newest_ > 0 ? 1 : 0;
        }
        const std::size_t at = newest ? std::min(newest_, samples_.size()) : 0;
        samples_.insert(samples_.begin() + static_cast<std::ptrdiff_t>(at), item);
        if (!newest) ++newest_;
    }

    std::vector<T> samples_;
    std::vector<Pixels> pixels_;  // by stroke, oldest first
    std::size_t newest_ = 0;      // where the newest stroke's samples begin
};
