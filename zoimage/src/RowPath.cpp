#include "RowPath.h"

#include <algorithm>
#include <utility>

#include "ZoImage/Iop.h"
#include "ZoImage/Render.h"

namespace Zo::Image {

namespace {

thread_local RowPath* current_path = nullptr;

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

}  // namespace

RowPath::RowPath(const RequestPass& pass, const RenderState& state) : state_(state), pass_(pass.id()) {
    windows_.resize(pass.ops().size());
    for (std::size_t slot = 0; slot < windows_.size(); ++slot) {
        windows_[slot].ring.resize(static_cast<std::size_t>(RequestPass::rows_in_use(*pass.ops()[slot])));
    }
}

RowPath* RowPath::current() {
    return current_path;
}

RowPath::Use::Use(RowPath& path) : before_(std::exchange(current_path, &path)) {}

RowPath::Use::~Use() {
    current_path = before_;
}

bool RowPath::aborted() const {
    return state_.stop.load(std::memory_order_relaxed) || (state_.abort != nullptr && state_.abort->raised());
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

void RowPath::fetch(Iop& op, int y, ChannelSet channels, Row& out) {
    if (op.pass_ != pass_) {
        fetch_alone(op, y, channels, out);
        return;
    }
    Window& window = windows_[static_cast<std::size_t>(op.slot_)];
    const int size = static_cast<int>(window.ring.size());
    const int place = y % size;
    Entry& entry = window.ring[static_cast<std::size_t>(place < 0 ? place + size : place)];

    const Box& box = op.info().box;
    Span span = inside(box, out.x(), out.r());
    const bool covered = entry.used && entry.y == y && entry.row.x() <= span.x && entry.row.r() >= span.r;
    if (covered && entry.row.channels().contains(channels)) {
        deliver(entry.row, channels, out);
        return;
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
    Row fresh(span.x, span.r);
    compute(op, window, y, make, fresh);
    if (covered) {
        entry.row.share(fresh, make & fresh.channels());
    } else {
        fresh.clear(kMaskAll - make);  // side products of engine are not promised to be right
        entry = {true, y, std::move(fresh)};
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
