// Base of the operators that make a row from the same row of their inputs.
//
// A subclass is its description and run(), which calls its kernel. Input 0 gives every channel that run does
// not make. Rows are independent.
#pragma once

#include <array>

#include "framework/RoleRows.h"
#include "framework/VlxIop.h"

class RowStage : public VlxIop {
  public:
    struct Output {
        // What run makes.
        ChannelSet made;
        // What readers are told that changes: a fetch without any of it goes straight to input 0.
        ChannelSet declared;
        // What is there even where input 0 has no such channel.
        ChannelSet added = kMaskNone;
        // What it is run for: a request without any of it gets input 0's row.
        ChannelSet wanted = made;
    };

    RowStage(const NodeContext& context, const ControlBlock* controls, Description description, Output output)
        : VlxIop(context, controls, std::move(description)), output_(output) {}

    ChannelSet kept_channels() const override { return output_.made + output_.declared; }

  protected:
    static constexpr std::size_t kMostInputs = 4;
    using Rows = std::array<Row, kMostInputs>;

    // Makes the span of `row`, which has all else of input 0 already; `in` holds the described channels of
    // the inputs that are read. `channels` is what is asked for.
    virtual void run(int y, const Rows& in, ChannelSet channels, Row& row) const = 0;

    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override;

  private:
    // The channels of input n that making `channels` takes.
    ChannelSet needed(std::size_t n, ChannelSet channels) const;

    Output output_;
};
