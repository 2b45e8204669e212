// An operator that makes an image, a row at a time.
//
// A subclass overrides _validate (what is my image?), _request (what do I need of my inputs for this
// area?) and engine (compute one row). Life of a frame: validate once, request once for the wanted area,
// then engine for rows from many threads. Rows that engine made lately are kept per thread, so within a
// thread no row is computed twice while someone still needs it.
//
// An operator must request from its inputs what its engine reads: an input that nobody requested was not
// validated. (Channels may be left out of a request; then they are computed when they are first read.)
#pragma once

#include <algorithm>
#include <cstddef>

#include "ZoImage/Info.h"
#include "ZoImage/Op.h"
#include "ZoImage/Row.h"

namespace Zo::Image {

class Iop : public Op {
  public:
    explicit Iop(const NodeContext& context) : Op(context) {}

    Iop* as_iop() final { return this; }

    // Valid after validate.
    const Info& info() const { return info_; }
    // The channels that this operator changes. A fetch with none of them goes straight to input 0.
    ChannelSet out_channels() const { return out_channels_; }

    // Input n as an image; black (0 in every channel, an empty box) when nothing is connected.
    Iop& input(int n) const;
    // The black image that stands in for missing inputs.
    static Iop& black();
    // The host's default for an image input: black.
    Op* default_input(int n) override;

    // The channels whose rows are worth keeping until the next render: those that the operator computes.
    // None where the pixels lie in memory anyway, or cost no more to make than to read back.
    virtual ChannelSet kept_channels() const { return out_channels_; }

    // The memory that it keeps by itself, which a cache of rows counts as its own.
    std::size_t held_bytes() const { return held_bytes_; }

    // Announces that rows y to t - 1, columns x to r - 1 of these channels will be read `count` times.
    // Validates for real first. May be called many times; the areas add up.
    void request(int x, int y, int r, int t, ChannelSet channels, int count);

    // Announces, after a request, that rows of these channels will be read ahead of their turn, by one that
    // needs the whole frame before it makes its first row. Where others read the operator too, the render
    // keeps those channels, so that nothing is made twice.
    void read_ahead(ChannelSet channels) { requested_.ahead += channels; }

    // Fills the row's whole span with channels of row y. Beyond the box the nearest edge pixel repeats.
    // Any thread during a render. Outside a render it works too, without keeping rows.
    void get(int y, int x, int r, ChannelSet channels, Row& row);

    // What the present render asked of this operator; filled by request.
    struct Requested {
        Box box;
        ChannelSet channels;
        ChannelSet ahead;  // of those, what is read ahead of its turn
        int count = 0;
    };
    const Requested& requested() const { return requested_; }

  protected:
    // Validates input n and takes over its info.
    void copy_info(int n = 0);
    void set_out_channels(ChannelSet channels) { out_channels_ = channels; }
    // Announces memory that the operator keeps from render to render from now on; the most that was ever
    // announced counts.
    void hold(std::size_t bytes) { held_bytes_ = std::max(held_bytes_, bytes); }

    // The default copies input 0's info and declares every channel changed.
    void _validate(bool for_real) override;
    // The default passes the request on to input 0.
    virtual void _request(int x, int y, int r, int t, ChannelSet channels, int count);
    // Computes channels of row y over x <= column < r into `row`, whose span is exactly that. Called only
    // inside the operator's box. Leaving a channel unwritten means that it could not be computed (the
    // render was aborted); it is asked for again if it is still wanted.
    virtual void engine(int y, int x, int r, const ChannelSet& channels, Row& row) = 0;

    Info info_;

  private:
    friend class RequestPass;
    friend class RowPath;

    ChannelSet out_channels_ = kMaskAll;
    Requested requested_;
    std::uint64_t pass_ = 0;  // the request pass that requested_ and slot_ belong to
    int slot_ = -1;           // this operator's place in that pass
    int rows_in_use_ = 1;     // rows of this operator that the making of one output row can touch
    std::size_t held_bytes_ = 0;
};

}  // namespace Zo::Image
