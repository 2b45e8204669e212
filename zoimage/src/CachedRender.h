// What one render takes from a cache and leaves in it, and what it keeps for itself: rows that are read ahead
// of their turn and then again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "KeepChoice.h"
#include "KeptRows.h"
#include "PlaneStore.h"
#include "RequestPass.h"
#include "ZoImage/Hash.h"
#include "ZoImage/Render.h"
#include "ZoImage/RowCache.h"

namespace Zo::Image {

struct RowCache::Impl {
    explicit Impl(std::size_t budget) : store(budget) {}

    struct Entry {
        std::unique_ptr<KeptRows> rows;
        Hash state;                     // what the rows were made from
        std::uint64_t last_render = 0;  // that the operator took part in; 0: none yet
        int changes = 0;                // renders in a row, up to the last, that found the state changed
        double row_cost = 0.0;          // nanoseconds a row; 0: not measured yet
        bool elsewhere = false;         // its pixels turned out to lie in memory anyway
    };

    PlaneStore store;
    std::unordered_map<std::uint64_t, Entry> entries;  // by the operator's serial number
    std::uint64_t renders = 0;
};

class CachedRender {
  public:
    // Drops what no longer holds and makes room for what this render will compute. What is read ahead and has
    // no place in the cache, if there is one, gets planes of `own`, which outlives this.
    CachedRender(RowCache* cache, PlaneStore& own, const RequestPass& pass);

    // Kept rows of the operator in this slot of the pass; null when there are none.
    KeptRows* rows(std::size_t slot) const { return rows_[slot]; }
    // True when an operator's cost is not known yet.
    bool wants_times() const { return wants_times_; }
    // Takes in how the render went. Its row paths are gone by then.
    void learn(const std::vector<OpStats>& stats, bool complete);

  private:
    void keep_in_cache();
    void choose(std::vector<KeepOption>& options);
    void make_room(std::size_t bytes);
    void allocate(const std::vector<KeepOption>& options);
    void keep_what_is_read_ahead(PlaneStore& own);

    RowCache::Impl* cache_;
    const RequestPass& pass_;
    std::vector<RowCache::Impl::Entry*> entries_;
    std::vector<KeptRows*> rows_;
    std::vector<std::unique_ptr<KeptRows>> own_;
    bool wants_times_ = false;
};

}  // namespace Zo::Image
