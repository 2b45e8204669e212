#include "ZoImage/Iop.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <new>

#include "RequestPass.h"
#include "RowPath.h"

namespace Zo::Image {

namespace {

class Black final : public Iop {
  public:
    Black() : Iop(NodeContext{}) { serve_all_graphs(); }
    const char* class_name() const override { return "Black"; }

  protected:
    void _validate(bool /*for_real*/) override {}
    void engine(int, int, int, const ChannelSet&, Row&) override {}
};

void set_zero(ChannelSet channels, Row& row) {
    for (const Channel c : channels) row.set_zero(c);
}

}  // namespace

Iop& Iop::black() {
    // Never destroyed, for operators that read it may outlive any static object.
    alignas(Black) static std::byte memory[sizeof(Black)];
    static Black& black = *new (memory) Black;
    return black;
}

Iop& Iop::input(int n) const {
    Op* op = input_op(n);
    Iop* image = op == nullptr ? nullptr : op->as_iop();
    return image == nullptr ? black() : *image;
}

Op* Iop::default_input(int /*n*/) {
    return &black();
}

void Iop::copy_info(int n) {
    Iop& from = input(n);
    from.validate(true);
    info_ = from.info();
}

void Iop::_validate(bool /*for_real*/) {
    copy_info();
    set_out_channels(kMaskAll);
}

void Iop::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels, count);
}

void Iop::request(int x, int y, int r, int t, ChannelSet channels, int count) {
    if (this == &black()) return;  // shared by every graph, and nothing to prepare
    validate(true);
    RequestPass* pass = RequestPass::current();
    const bool first = pass == nullptr || pass->enter(*this);
    requested_.count += count;
    // No column beyond the box is ever made. Rows stay as they are asked for: how far they reach beyond the
    // frame tells how many are in use at once.
    if (!info_.box.empty()) {
        x = std::clamp(x, info_.box.x, info_.box.r - 1);
        r = std::clamp(r, info_.box.x + 1, info_.box.r);
    }
    const Box box{x, y, r, t};
    if (!first && requested_.box.contains(box) && requested_.channels.contains(channels)) return;
    requested_.box.merge(box);
    requested_.channels += channels;
    const Box& all = requested_.box;
    if (pass == nullptr) {
        _request(x, y, r, t, channels, count);
    } else {
        // The whole of what is wanted by now, so that the test above is exact.
        const auto reader = pass->read_by(*this);
        _request(all.x, all.y, all.r, all.t, requested_.channels, count);
    }
}

void Iop::get(int y, int x, int r, ChannelSet channels, Row& row) {
    assert(row.x() == x && row.r() == r);
    if (r <= x) return;
    if (info_.box.empty()) {
        set_zero(channels, row);
        return;
    }
    if (!(channels & info_.channels).intersects(out_channels_) && connected(0)) {
        input(0).get(std::clamp(y, info_.box.y, info_.box.t - 1), x, r, channels, row);
        return;
    }
    set_zero(channels - info_.channels, row);
    channels &= info_.channels;
    if (channels.empty()) return;
    assert(valid());
    y = std::clamp(y, info_.box.y, info_.box.t - 1);
    if (RowPath* path = RowPath::current()) {
        path->fetch(*this, y, channels, row);
    } else {
        RowPath::fetch_alone(*this, y, channels, row);
    }
}

}  // namespace Zo::Image
