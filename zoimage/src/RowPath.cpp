#include "RowPath.h"

#include <algorithm>
#include <utility>

#include "CachedRender.h"
#include "ThisThread.h"
#include "ZoImage/Iop.h"
#include "ZoImage/Render.h"

namespace Zo::Image {

namespace {

struct Span {
    int x;
    int r;
};

// The part of [x, r) that lies in the box; at least the nearest edge pixel.
Span inside(const Box& box, int x, int r) {
    return {std::clamp(x, box.x, box.r - 1), std::clamp(r, box.x + 1, box.r)};
}

// Hands channels of `from`, which covers the inside of out's span, to `out`, repeating edge pixels.
void deliver(const Row& from, ChannelSet channels, Row& out) {
    if (from.x() <= out.x() && from.r() >= out.r()) {
        out.share(from, channels);
        return;
    }
    const int left = std::clamp(from.x(), out.x(), out.r());
    const int right = std::clamp(from.r(), out.x(), out.r());
    for (const Channel c : channels) {
        if (!from.channels().has(c)) {
            out.clear(c);
            continue;
        }
        const float* source = from[c];
        float* target = out.overwrite(c);
        target = std::fill_n(target, left - out.x(), source[0]);
        if (right > left) target = std::copy_n(source + (left - from.x()), right - left, target);
        std::fill_n(target, out.r() - std::max(left, right), source[from.r() - from.x() - 1]);
    }
}

bool within(const KeptRows& kept, const Span& span) {
    return span.x >= kept.area().x && span.r <= kept.area().r;
}

// Hands channels of a kept row to a row that lies within it.
void refer_to(const KeptRows& kept, int y, ChannelSet channels, Row& row) {
    const int offset = row.x() - kept.area().x;
    for (const Channel c : channels) row.refer(c, kept.pixels(c, y) + offset);
}

}  // namespace

RowPath::RowPath(const RequestPass& pass, const CachedRender& cached, RenderState& state)
    : state_(state), pass_(pass.id()) {
    windows_.resize(pass.ops().size());
    for (std::size_t slot = 0; slot < windows_.size(); ++slot) {
        windows_[slot].ring.resize(static_cast<std::size_t>(RequestPass::rows_in_use(*pass.ops()[slot])));
        windows_[slot].kept = cached.rows(slot);
    }
}

RowPath* RowPath::current() {
    return this_thread().path;
}

bool RowPath::aborted() const {
    if (state_.stop.load(std::memory_order_relaxed)) return true;
    if (state_.abort == nullptr || !state_.abort->raised()) return false;
    state_.stop.store(true, std::memory_order_relaxed);
    return true;
}

void RowPath::compute(Iop& op, Window& window, int y, ChannelSet channels, Row& row) {
    ++window.work.rows;
    if (!state_.measure_time) {
        op.engine(y, row.x(), row.r(), channels, row);
        return;
    }
    const auto outer_inner_time = inner_time_;
    inner_time_ = {};
    const auto start = std::chrono::steady_clock::now();
    op.engine(y, row.x(), row.r(), channels, row);
    const auto spent = std::chrono::steady_clock::now() - start;
    window.work.time += spent - inner_time_;
    inner_time_ = outer_inner_time + spent;
}

// The same, writing straight to where rows are kept what is to be kept.
void RowPath::compute_and_keep(Iop& op, Window& window, int y, ChannelSet channels, Row& row) {
    KeptRows& kept = *window.kept;
    // Only whole rows are taken in.
    const bool whole = row.x() == kept.area().x && row.r() == kept.area().r;
    const ChannelSet claimed = whole ? kept.claim(y, channels) : kMaskNone;
    Row::Places places{};
    for (const Channel c : claimed) places[static_cast<std::size_t>(c)] = kept.buffer(c, y);
    row.places_ = &places;
    compute(op, window, y, channels, row);
    row.places_ = nullptr;

    ChannelSet handed_on;
    for (const Channel c : (channels & row.channels()) - op.out_channels()) {
        if (!row.sole(c)) handed_on += c;
    }
    kept.note_handed_on(handed_on);

    ChannelSet finished;
    for (const Channel c : claimed& row.channels()) {
        // Pixels that were only referred to stay in memory by themselves.
        if (!row.counted(c)) continue;
        RowBuffer* place = kept.buffer(c, y);
        if (row[c] != place->data()) {
            if (place->references != 0) continue;
            std::copy_n(row[c], row.width(), place->data());
        } else if (place->references != 1) {
            continue;
        }
        row.refer(c, place->data());
        finished += c;
    }
    if (!aborted()) kept.finish(y, finished);
}

void RowPath::fetch(Iop& op, int y, ChannelSet channels, Row& out) {
    if (op.pass_ != pass_) {
        fetch_alone(op, y, channels, out);
        return;
    }
    // What is asked for once nobody wants the result is not made: nested filters would ask for all of their
    // windows again, each row of each of them anew.
    if (aborted()) return;
    Window& window = windows_[static_cast<std::size_t>(op.slot_)];
    Entry& entry = window.entry_for(y);

    const Box& box = op.info().box;
    Span span = inside(box, out.x(), out.r());
    const bool covered = entry.used && entry.y == y && entry.row.x() <= span.x && entry.row.r() >= span.r;
    if (covered && entry.row.channels().contains(channels)) {
        deliver(entry.row, channels, out);
        return;
    }
    // Asked once, for another thread may finish the row meanwhile.
    ChannelSet kept = window.kept == nullptr ? kMaskNone : window.kept->finished(y);
    if (window.kept != nullptr && within(*window.kept, span)) {
        const ChannelSet rest = channels - kept;
        if (rest.empty() || (window.kept->handed_on().contains(rest) && op.connected(0))) {
            Row row(span.x, span.r);
            refer_to(*window.kept, y, channels & kept, row);
            if (!rest.empty()) row.get(op.input(0), y, rest);
            deliver(row, channels, out);
            return;
        }
    }

    // The first time, everything is made that anyone requested, so that nobody asks twice.
    const Box& wanted = op.requested().box;
    ChannelSet make = channels + (op.requested().channels & op.info().channels);
    if (covered) {
        span = {entry.row.x(), entry.row.r()};
        make -= entry.row.channels();
    } else if (wanted.r > wanted.x) {
        const Span requested = inside(box, wanted.x, wanted.r);
        span = {std::min(span.x, requested.x), std::max(span.r, requested.r)};
    }
    const bool keep = window.kept != nullptr && within(*window.kept, span);
    kept = keep ? kept & make : kMaskNone;
    make -= kept;
    Row fresh(span.x, span.r);
    if (keep) {
        compute_and_keep(op, window, y, make, fresh);
    } else {
        compute(op, window, y, make, fresh);
    }
    fresh.clear(kMaskAll - make);  // side products of engine are not promised to be right
    if (!kept.empty()) refer_to(*window.kept, y, kept, fresh);
    if (covered) {
        entry.row.share(fresh, fresh.channels());
    } else {
        entry.used = true;
        entry.y = y;
        entry.row = std::move(fresh);
    }
    deliver(entry.row, channels, out);
    // An aborted engine may leave rows half made.
    if (aborted()) entry.used = false;
}

void RowPath::fetch_alone(Iop& op, int y, ChannelSet channels, Row& out) {
    const Span span = inside(op.info().box, out.x(), out.r());
    Row fresh(span.x, span.r);
    op.engine(y, span.x, span.r, channels, fresh);
    deliver(fresh, channels, out);
}

}  // namespace Zo::Image
