// The engine's own cost: chains of operators that do next to nothing to a row.
#include <memory>
#include <string>
#include <vector>

#include "ZoImage/GeneralTile.h"
#include "ZoImage/Iop.h"
#include "ZoImage/PixelIop.h"
#include "ZoImage/Render.h"
#include "support/Table.h"

namespace bench {

namespace {

using namespace Zo::Image;

constexpr int kRows = 4000;

// Serves one row again and again.
class Source final : public Iop {
  public:
    explicit Source(int width) : Iop(NodeContext{}), pixels_(static_cast<std::size_t>(width), 0.5f) {}
    const char* class_name() const override { return "Source"; }

  protected:
    void _validate(bool /*for_real*/) override {
        info_.box = info_.format.box = {0, 0, static_cast<int>(pixels_.size()), kRows};
        info_.channels = kMaskRgba;
    }
    void _request(int, int, int, int, ChannelSet, int) override {}
    void engine(int /*y*/, int x, int /*r*/, const ChannelSet& channels, Row& row) override {
        for (const Channel c : channels) row.refer(c, pixels_.data() + x);
    }

  private:
    std::vector<float> pixels_;
};

// Passes on what it reads.
class Pass final : public Iop {
  public:
    Pass() : Iop(NodeContext{}) { inputs(1); }
    const char* class_name() const override { return "Pass"; }

  protected:
    void engine(int y, int /*x*/, int /*r*/, const ChannelSet& channels, Row& row) override {
        row.get(input(0), y, channels);
    }
};

// Writes one number over alpha.
class Write final : public PixelIop {
  public:
    Write() : PixelIop(NodeContext{}) {}
    const char* class_name() const override { return "Write"; }

  protected:
    void pixel_engine(const Row& in, int /*y*/, int /*x*/, int /*r*/, ChannelSet channels,
                      Row& out) override {
        for (const Channel c : channels - kMaskAlpha) out.share(in, c);
        if (channels.has(kAlpha)) out.overwrite(kAlpha)[0] = 1.0f;
    }
};

// Reads five rows around each and shares the middle one's alpha.
class Tile final : public Iop {
  public:
    Tile() : Iop(NodeContext{}) { inputs(1); }
    const char* class_name() const override { return "Tile"; }

  protected:
    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override {
        input(0).request(x, y - 2, r, t + 2, channels, count * 5);
    }
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override {
        const GeneralTile tile(input(0), {x, y - 2, r, y + 3}, kMaskAlpha);
        row.get(input(0), y, channels);
    }
};

template <class Operator>
double nanoseconds(int length, int width) {
    Source source(width);
    std::vector<std::unique_ptr<Iop>> chain;
    Iop* last = &source;
    for (int i = 0; i < length; ++i) {
        chain.push_back(std::make_unique<Operator>());
        chain.back()->set_input(0, last);
        last = chain.back().get();
    }
    Renderer renderer(1);
    const auto render = [&] {
        renderer.render(*last, {0, 0, width, kRows}, kMaskRgba, [](int, const Row&) {});
    };
    return time_calls(render, 7, 0.05).least * 1e9 / kRows;
}

// The difference of two lengths leaves out what a row costs whatever the chain.
template <class Operator>
void time_chain(benchmark::State& state, int width) {
    constexpr int kShort = 1;
    constexpr int kLong = 9;
    for (auto _ : state) {
        const double one = nanoseconds<Operator>(kShort, width);
        const double many = nanoseconds<Operator>(kLong, width);
        state.counters["ns, row and operator"] = (many - one) / (kLong - kShort);
        state.counters["ns, row through one"] = one;
    }
}

template <class Operator>
void register_chain(const std::string& name) {
    for (const int width : {64, 1920, 4096}) {
        benchmark::RegisterBenchmark((name + ", " + std::to_string(width) + " pixels").c_str(),
                                     time_chain<Operator>, width)
            ->Iterations(1);
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_chain<bench::Pass>("passes 4 channels on");
    bench::register_chain<bench::Write>("writes a number, shares 3 channels");
    bench::register_chain<bench::Tile>("reads a tile of 5 rows");
    return bench::run_table(argc, argv, "operator, row",
                            {{"ns, row and operator", 0}, {"ns, row through one", 0}});
}
