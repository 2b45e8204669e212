#include "CachedRender.h"

#include <algorithm>
#include <new>
#include <optional>

#include "ZoImage/Iop.h"

namespace Zo::Image {

namespace {

constexpr std::uint64_t kRendersRemembered = 256;
// From this many changes in a row on, as while a knob is dragged or frames play, the next is expected to
// follow, and writing rows for it to throw away would only cost time.
constexpr int kMoving = 2;
constexpr double kGuessedCost = 1.0;  // nanoseconds a pixel and channel

// Names what an operator's rows are made from: its own state and, whatever that says of them, the states of
// all it reads. An operator whose hash its owner has yet to bring up to date is told apart by this too.
const Hash& state_of(std::size_t slot, const RequestPass& pass, std::vector<std::optional<Hash>>& states) {
    if (states[slot]) return *states[slot];
    const Iop& op = *pass.ops()[slot];
    const Box& box = op.info().box;
    Hash hash = op.hash();
    for (const int side : {box.x, box.y, box.r, box.t}) hash.append(side);
    for (const std::size_t source : pass.reads(slot)) {
        hash.append(pass.ops()[source]->serial());
        hash.append(state_of(source, pass, states));
    }
    return states[slot].emplace(hash);
}

Box wanted_area(const Iop& op) {
    Box area = op.requested().box;
    area.intersect(op.info().box);
    return area;
}

ChannelSet wanted_channels(const Iop& op) {
    return op.requested().channels & op.info().channels & op.kept_channels();
}

// What the operators of the pass hold themselves, those too that the root has left out of this render.
std::size_t held_bytes(const RequestPass& pass) {
    if (pass.ops().empty()) return 0;
    const Iop* const root = pass.ops().front();
    std::size_t bytes = 0;
    for (const Iop* op : pass.ops()) bytes += op->parent() == root ? 0 : op->held_bytes();
    for (Op* op : root->children()) bytes += op->as_iop() == nullptr ? 0 : op->as_iop()->held_bytes();
    return bytes;
}

// The operators inside one that is itself internal, such as a pass of a filter, and read by nobody else: the
// outer one's rows stand for theirs.
std::vector<bool> find_halves(const RequestPass& pass) {
    const std::vector<Iop*>& ops = pass.ops();
    std::vector<bool> half(ops.size());
    for (std::size_t slot = 1; slot < ops.size(); ++slot) {
        const Op* outer = ops[slot]->parent();
        half[slot] = outer != nullptr && outer->parent() != nullptr && outer != ops[0];
    }
    for (std::size_t reader = 0; reader < ops.size(); ++reader) {
        for (const std::size_t source : pass.reads(reader)) {
            const Op* outer = ops[source]->parent();
            if (ops[reader] != outer && ops[reader]->parent() != outer) half[source] = false;
        }
    }
    return half;
}

}  // namespace

CachedRender::CachedRender(RowCache* cache, PlaneStore& own, const RequestPass& pass)
    : cache_(cache == nullptr ? nullptr : cache->impl_.get()), pass_(pass), rows_(pass.ops().size()) {
    if (cache_ != nullptr) keep_in_cache();
    try {
        keep_what_is_read_ahead(own);
    } catch (const std::bad_alloc&) {
        // Then it is made again.
    }
}

void CachedRender::keep_in_cache() {
    ++cache_->renders;
    std::erase_if(cache_->entries, [&](const auto& item) {
        const RowCache::Impl::Entry& entry = item.second;
        return !entry.rows && entry.last_render + kRendersRemembered < cache_->renders;
    });
    for (const Iop* op : pass_.ops()) entries_.push_back(&cache_->entries[op->serial()]);

    std::vector<KeepOption> options(entries_.size());
    std::vector<std::optional<Hash>> states(entries_.size());
    const std::vector<bool> half = find_halves(pass_);
    for (std::size_t slot = 0; slot < entries_.size(); ++slot) {
        const Iop& op = *pass_.ops()[slot];
        RowCache::Impl::Entry& entry = *entries_[slot];
        KeepOption& option = options[slot];
        const Hash& state = state_of(slot, pass_, states);
        option.reads = &pass_.reads(slot);
        const bool known = entry.last_render != 0;
        option.changed = !known || entry.state != state;
        entry.changes = known && option.changed ? entry.changes + 1 : 0;
        entry.state = state;
        entry.last_render = cache_->renders;

        const Box area = wanted_area(op);
        const ChannelSet channels = wanted_channels(op);
        const bool keep = slot != 0 && !half[slot] && !entry.elsewhere && entry.changes < kMoving &&
                          !channels.empty() && !area.empty();
        if (entry.rows && (option.changed || !keep || !entry.rows->area().contains(area))) entry.rows.reset();
        option.ready = entry.rows != nullptr;
        const Box& held = entry.rows ? entry.rows->area() : area;
        const auto planes =
            static_cast<std::size_t>((entry.rows ? channels + entry.rows->channels() : channels).size());
        if (keep) option.bytes = KeptRows::plane_bytes(held) * planes;
        option.cost = entry.row_cost * area.height();
        if (entry.row_cost == 0.0) {
            wants_times_ = wants_times_ || keep;
            option.cost = kGuessedCost * area.width() * area.height() * channels.size();
        }
    }
    cache_->store.set_aside(held_bytes(pass_));
    choose(options);
    make_room(0);
    try {
        allocate(options);
    } catch (const std::bad_alloc&) {
        // Then less is kept. A cache is no reason for a render to fail.
    }
}

void CachedRender::choose(std::vector<KeepOption>& options) {
    std::size_t all = 0;
    for (const KeepOption& option : options) all += option.bytes;
    if (all <= cache_->store.budget()) return;
    const std::vector<bool> kept = choose_kept(options, cache_->store.budget());
    for (std::size_t slot = 0; slot < kept.size(); ++slot) {
        if (kept[slot]) continue;
        options[slot].bytes = 0;
        entries_[slot]->rows.reset();
    }
}

// Lets go of what other graphs left, what was not used for longest first.
void CachedRender::make_room(std::size_t bytes) {
    while (cache_->store.used() + bytes > cache_->store.budget()) {
        RowCache::Impl::Entry* oldest = nullptr;
        for (auto& [serial, entry] : cache_->entries) {
            if (!entry.rows || entry.last_render == cache_->renders) continue;
            if (oldest == nullptr || entry.last_render < oldest->last_render) oldest = &entry;
        }
        if (oldest == nullptr) break;
        oldest->rows.reset();
    }
    cache_->store.trim(cache_->store.budget());
}

void CachedRender::allocate(const std::vector<KeepOption>& options) {
    for (std::size_t slot = 0; slot < options.size(); ++slot) {
        if (options[slot].bytes == 0) continue;
        const Iop& op = *pass_.ops()[slot];
        std::unique_ptr<KeptRows>& rows = entries_[slot]->rows;
        if (!rows) rows = std::make_unique<KeptRows>(wanted_area(op));
        rows->reopen();
        for (const Channel c : wanted_channels(op) - rows->channels()) {
            const std::size_t bytes = KeptRows::plane_bytes(rows->area());
            make_room(bytes);
            rows->add(c, cache_->store.take(bytes));
        }
        rows_[slot] = rows.get();
    }
}

void CachedRender::keep_what_is_read_ahead(PlaneStore& own) {
    std::vector<int> readers(pass_.ops().size());
    for (std::size_t reader = 0; reader < readers.size(); ++reader) {
        for (const std::size_t source : pass_.reads(reader)) ++readers[source];
    }
    for (std::size_t slot = 0; slot < readers.size(); ++slot) {
        const Iop& op = *pass_.ops()[slot];
        const ChannelSet channels = op.requested().ahead & op.info().channels;
        const bool kept = rows_[slot] != nullptr;
        if (kept || channels.empty() || readers[slot] < 2 || op.info().box.empty()) continue;
        own_.push_back(std::make_unique<KeptRows>(wanted_area(op)));
        rows_[slot] = own_.back().get();
        const std::size_t bytes = KeptRows::plane_bytes(wanted_area(op));
        for (const Channel c : channels) rows_[slot]->add(c, own.take(bytes));
    }
}

void CachedRender::learn(const std::vector<OpStats>& stats, bool complete) {
    if (cache_ == nullptr) return;
    for (std::size_t slot = 0; slot < stats.size(); ++slot) {
        RowCache::Impl::Entry& entry = *entries_[slot];
        const OpStats& work = stats[slot];
        if (work.rows > 0 && work.time.count() > 0) {
            entry.row_cost = static_cast<double>(work.time.count()) / static_cast<double>(work.rows);
        }
        if (complete && entry.rows && entry.rows->useless()) {
            entry.elsewhere = true;
            entry.rows.reset();
        }
    }
}

}  // namespace Zo::Image
