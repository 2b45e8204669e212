#include "tools/Tuner.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <optional>
#include <unordered_map>

namespace {

using Cells = std::vector<int>;

constexpr int kMostRefusals = 6;
constexpr int kMostRounds = 16;
constexpr int kMostDescents = 12;
constexpr int kPolished = 4;  // candidates drawn back
// Chunks of samples that one search judges before it takes no further way: about 25 ms. Only samples that
// contradict each other in many ways need as much.
constexpr int kMostWork = 28'000;
constexpr int kRaySteps = 1024;

// A score below this is 0.
constexpr double kAny = std::numeric_limits<double>::denorm_min();

// The misses at places that were tried: the search passes most of them again for each sample that it takes
// in, and often knows enough after a few samples of a place. Samples are judged a chunk at a time. Once it
// holds kMost numbers it learns no more.
class Tried {
  public:
    struct Place {
        double* misses;
        std::uint64_t judged;  // a bit for each chunk
    };

    explicit Tried(std::size_t samples)
        : samples_(samples), chunk_(std::max(kLeastChunk, (samples + 63) / 64)), spare_(samples) {}

    std::size_t chunk() const { return chunk_; }

    // Holds until the next call.
    Place& at(const Cells& cells) {
        if (const auto known = places_.find(cells); known != places_.end()) return known->second;
        if ((places_.size() + 1) * samples_ > kMost) return no_place_ = {spare_.data(), 0};
        const std::size_t on_a_page = std::max(kPage / samples_, std::size_t{1});
        const std::size_t slot = places_.size() % on_a_page;
        if (slot == 0) pages_.emplace_back(on_a_page * samples_);
        return places_.emplace(cells, Place{pages_.back().data() + slot * samples_, 0}).first->second;
    }

  private:
    static constexpr std::size_t kLeastChunk = 32;
    static constexpr std::size_t kMost = std::size_t{1} << 21U;
    static constexpr std::size_t kPage = std::size_t{1} << 14U;

    struct Hash {
        std::size_t operator()(const Cells& cells) const {
            std::uint64_t sum = 0;
            for (const int cell : cells) {
                sum = (sum ^ static_cast<std::uint32_t>(cell)) * 0x9e3779b97f4a7c15U;
                sum ^= sum >> 32U;
            }
            return sum;
        }
    };

    std::size_t samples_;
    std::size_t chunk_;
    std::unordered_map<Cells, Place, Hash> places_;
    std::vector<std::vector<double>> pages_;
    std::vector<double> spare_;
    Place no_place_{};
};

// One search around fixed knobs.
class Search {
  public:
    Search(const KnobStorage& base, std::span<const Dial> dials, const KnobFields& held,
           std::span<const Ray> combinations, std::size_t samples, const Misses& misses)
        : base_(base), dials_(dials), misses_(misses), samples_(samples), tried_(samples), wanted_(samples) {
        std::iota(wanted_.begin(), wanted_.end(), std::size_t{0});
        for (std::size_t i = 0; i < dials.size(); ++i) {
            const bool stays = held.has_row(dials[i].row);
            lowest_.push_back(stays ? 0 : dials[i].lowest(dials[i].in(base)));
            highest_.push_back(stays ? 0 : dials[i].highest(dials[i].in(base)));
            for (const double sign : {1.0, -1.0}) {
                Ray ray(dials.size(), 0.0);
                ray[i] = sign;
                rays_.push_back(ray);
            }
        }
        for (Ray ray : combinations) {
            ray.resize(dials.size());
            rays_.push_back(ray);
            for (double& share : ray) share = -share;
            rays_.push_back(ray);
        }
    }

    // Every sample if that can be, else the newer ones. All at once leads astray where one kind of sample
    // needs one dial and another kind another one: there taking them in one by one is the nearer way.
    KnobStorage run() {
        const auto all = satisfy(Cells(dials_.size(), 0));
        if (all && turned(*all) < 2) return knobs(*all);
        const std::vector<std::size_t> every = wanted_;
        const Cells steps = one_by_one();
        if (!all) return knobs(steps);
        wanted_ = every;
        return knobs(score(steps, kAny) == 0.0 && distance(steps) < distance(*all) ? steps : *all);
    }

  private:
    struct Point {
        Cells cells;
        double score;
    };

    // From the newest sample back.
    Cells one_by_one() {
        Cells at(dials_.size(), 0);
        std::size_t left = wanted_.size();
        wanted_.clear();
        int refusals = 0;
        while (left-- > 0) {
            wanted_.insert(wanted_.begin(), left);
            if (score(at, kAny) == 0.0) continue;
            const bool try_on = refusals < kMostRefusals && work_ < kMostWork;
            const auto found = try_on ? satisfy(at) : std::nullopt;
            if (found) {
                at = *found;
            } else {
                wanted_.erase(wanted_.begin());
                ++refusals;
            }
        }
        return at;
    }

    static std::ptrdiff_t turned(const Cells& cells) {
        return std::count_if(cells.begin(), cells.end(), [](int cell) { return cell != 0; });
    }

    KnobStorage knobs(const Cells& cells) const {
        KnobStorage result = base_;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            dials_[i].in(result) = dials_[i].value(dials_[i].in(base_), cells[i]);
        }
        return result;
    }

    // The sum of what the wanted samples miss; once that is not below `enough`, any such number.
    double score(const Cells& cells, double enough = std::numeric_limits<double>::infinity()) {
        Tried::Place& place = tried_.at(cells);
        std::optional<KnobStorage> trial;
        double sum = 0.0;
        for (const std::size_t i : wanted_) {
            const std::size_t chunk = i / tried_.chunk();
            if ((place.judged >> chunk & 1U) == 0) {
                if (!trial) trial = knobs(cells);
                const std::size_t begin = chunk * tried_.chunk();
                const std::size_t count = std::min(tried_.chunk(), samples_ - begin);
                misses_(*trial, begin, {place.misses + begin, count});
                place.judged |= std::uint64_t{1} << chunk;
                ++work_;
            }
            sum += place.misses[i];
            if (sum >= enough) break;
        }
        return sum;
    }

    double distance(const Cells& cells) const {
        double sum = 0.0;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const float present = dials_[i].in(base_);
            const double turned =
                static_cast<double>(dials_[i].value(present, cells[i])) - static_cast<double>(present);
            sum += cells[i] == 0 ? 0.0 : std::abs(turned) / dials_[i].range;
        }
        return sum;
    }

    // The last cell that the ray leads the dial to.
    int end(std::size_t dial, const Ray& ray) const { return (ray[dial] > 0.0 ? highest_ : lowest_)[dial]; }

    Cells along(const Cells& from, const Ray& ray, int s, int most) const {
        Cells cells = from;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (ray[i] == 0.0) continue;
            const double way = (end(i, ray) - from[i]) * std::abs(ray[i]) * s / most;
            cells[i] = from[i] + static_cast<int>(std::lround(way));
        }
        return cells;
    }

    // A ray of one dial is walked cell by cell, others in kRaySteps.
    int steps(const Cells& from, const Ray& ray) const {
        int most = 0;
        int turned = 0;
        for (std::size_t i = 0; i < from.size(); ++i) {
            if (ray[i] == 0.0) continue;
            most = std::max(most, std::abs(end(i, ray) - from[i]));
            ++turned;
        }
        return turned > 1 ? std::min(most, kRaySteps) : most;
    }

    // The first point along the ray where nothing is amiss, else the best one.
    Point scan(const Cells& from, double here, const Ray& ray) {
        Point best{from, here};
        const int most = steps(from, ray);
        int best_at = 0;
        int last = 0;
        int gap = 0;
        for (int s = 1; s <= most; last = s, s = next_probe(s, most)) {
            const Point probe = point(from, ray, s, most, best.score);
            if (probe.score == 0.0) return first(from, ray, most, last, s);
            if (probe.score < best.score) {
                best = probe;
                best_at = s;
                gap = s - last;
            }
            if (s == most) break;
        }
        // Between the best probe and its neighbours.
        for (gap = (gap + 1) / 2; best_at > 0 && gap > 0; gap = gap > 1 ? (gap + 1) / 2 : 0) {
            for (const int s : {best_at - gap, best_at + gap}) {
                if (s < 1 || s > most) continue;
                const Point probe = point(from, ray, s, most, best.score);
                if (probe.score >= best.score) continue;
                best = probe;
                best_at = s;
                if (best.score == 0.0) return best;
            }
        }
        return best;
    }

    static int next_probe(int s, int most) {
        const int next = s + std::max(1, std::min(s / 3, most / 24));
        return s < most ? std::min(next, most) : most + 1;
    }

    Point point(const Cells& from, const Ray& ray, int s, int most, double enough) {
        Cells cells = along(from, ray, s, most);
        const double there = score(cells, enough);
        return {std::move(cells), there};
    }

    // Halves the way between a point that does not satisfy and one that does.
    Point first(const Cells& from, const Ray& ray, int most, int bad, int good) {
        const auto fits = [&](int s) { return point(from, ray, s, most, kAny).score == 0.0; };
        return {along(from, ray, halve(bad, good, fits), most), 0.0};
    }

    // The cells where all wanted samples are satisfied; `near` is where the samples wanted so far are.
    std::optional<Cells> satisfy(const Cells& near) {
        const Cells zero(dials_.size(), 0);
        const double here = score(zero);
        if (here == 0.0) return zero;
        std::vector<Cells> found;
        Point best{zero, here};
        look_around(best, found);
        if (near != zero) {
            Point other{near, score(near)};
            look_around(other, found);
            if (other.score < best.score) best = other;
        }
        for (int i = 0; i < kMostDescents && found.empty() && best.score > 0.0 && work_ < kMostWork; ++i) {
            const double before = best.score;
            look_around(best, found);
            if (best.score >= before) break;
        }
        if (found.empty()) return std::nullopt;

        std::stable_sort(found.begin(), found.end(),
                         [this](const Cells& a, const Cells& b) { return distance(a) < distance(b); });
        if (found.size() > kPolished) found.resize(kPolished);
        std::optional<Cells> nearest;
        for (Cells& cells : found) {
            draw_back(cells);
            exchange(cells);
            if (!nearest || distance(cells) < distance(*nearest)) nearest = cells;
        }
        return nearest;
    }

    // Scans all rays from a point; moves the point to the best place seen.
    void look_around(Point& at, std::vector<Cells>& found) {
        const Point from = at;
        for (const Ray& ray : rays_) {
            Point seen = scan(from.cells, from.score, ray);
            if (seen.score == 0.0) found.push_back(seen.cells);
            if (seen.score < at.score) at = std::move(seen);
        }
    }

    // A dial that is turned to its end may spare others more than it costs.
    void exchange(Cells& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            for (const int last : {highest_[i], lowest_[i]}) {
                Cells other = cells;
                other[i] = last;
                if (last == cells[i] || score(other, kAny) != 0.0) continue;
                draw_back(other, i);
                if (distance(other) < distance(cells)) cells = other;
            }
        }
    }

    // Dial `last` after the others.
    void draw_back(Cells& cells, std::size_t last = 0) {
        for (bool moved = true; moved;) {
            moved = false;
            for (std::size_t turn = 1; turn <= cells.size(); ++turn) {
                const std::size_t i = (last + turn) % cells.size();
                const int held = cells[i];
                if (held == 0) continue;
                const auto fits = [&](int cell) {
                    cells[i] = cell;
                    return score(cells, kAny) == 0.0;
                };
                cells[i] = fits(0) ? 0 : halve(0, held, fits);
                moved |= cells[i] != held;
            }
        }
    }

    const KnobStorage& base_;
    std::span<const Dial> dials_;
    const Misses& misses_;
    Cells lowest_, highest_;  // of each dial, from where it is
    std::vector<Ray> rays_;
    std::size_t samples_;
    Tried tried_;
    int work_ = 0;
    std::vector<std::size_t> wanted_;  // the oldest first, as misses are added up
};

// Whether a satisfies a newer sample than b where they differ first.
bool newer_satisfied(std::span<const double> a, std::span<const double> b) {
    for (std::size_t i = a.size(); i-- > 0;) {
        if ((a[i] == 0.0) != (b[i] == 0.0)) return a[i] == 0.0;
    }
    return false;
}

}  // namespace

Tuning tune(const KnobStorage& present, std::span<const Dial> dials, const KnobFields& held,
            std::span<const Ray> combinations, std::size_t samples, const Misses& misses) {
    Tuning result{present, std::vector<double>(samples)};
    misses(present, 0, result.misses);
    for (int round = 0; round < kMostRounds; ++round) {
        if (std::ranges::all_of(result.misses, [](double m) { return m == 0.0; })) break;
        const KnobStorage base = result.knobs;
        Tuning tried{Search(base, dials, held, combinations, samples, misses).run(),
                     std::vector<double>(samples)};
        misses(tried.knobs, 0, tried.misses);
        if (!newer_satisfied(tried.misses, result.misses)) break;
        result = std::move(tried);
    }
    return result;
}
