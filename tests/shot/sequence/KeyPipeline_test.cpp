#include "shot/sequence/KeyPipeline.h"

#include <mutex>

#include "ZoImage/Iop.h"
#include "shot/Errors.h"
#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

constexpr int kHeight = 4;
constexpr int kFrames = 6;

// Foreground plus the clean plate's red, in every channel.
class AddRed final : public Iop {
  public:
    AddRed() : Iop(NodeContext{"AddRed"}) { inputs(2); }
    const char* class_name() const override { return "AddRed"; }

  protected:
    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override {
        input(0).request(x, y, r, t, channels, count);
        input(1).request(x, y, r, t, kRed, count);
    }
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override {
        Row plate(x, r);
        plate.get(input(1), y, kRed);
        row.get(input(0), y, channels);
        for (const Channel c : channels) {
            float* out = row.writable(c);
            for (std::size_t i = 0; i < row.width(); ++i) out[i] += plate[kRed][i];
        }
    }
};

class KeyPipelineTest : public test::Files {
  protected:
    KeyPipelineTest() {
        for (int frame = 1; frame <= kFrames; ++frame) write_flat(name("fg", frame), 5, frame);
        write_flat(file("cp.exr"), 5, 100);
        caller_.abort = &abort_;
        caller_.warn = [this](const std::string& line) {
            const std::lock_guard hold(mutex_);
            warnings_ += line + '\n';
        };
        caller_.progress = [this](double done, int frames) {
            const std::lock_guard hold(mutex_);
            done_ = std::max(done_, done);
            if (frames != kFrames || done >= abort_at_) abort_.raise();
        };
    }

    std::string name(const std::string& what, int frame) const {
        return file(what + "." + std::to_string(frame) + ".exr");
    }
    static void write_flat(const std::string& path, int width, int value) {
        const Box box{0, 0, width, kHeight};
        const auto flat = [&](Channel, int, int) { return static_cast<float>(value); };
        write_image(path, test::image_of(box, box, kMaskRgb, flat), {.overwrite = true});
    }
    bool run(bool resume = false) {
        const FrameLoader::Names names{FramePattern(file("fg.#.exr")), FramePattern(file("cp.exr"))};
        KeyPlan plan{{1, kFrames, 1}, FramePattern(file("out.%d.exr")), {.overwrite = resume}, resume, 2};
        check_outputs(plan, names);
        NodeInputs inputs;
        AddRed node;
        inputs.connect(node, names);
        FrameLoader loader(names, Fit::kRefuse, caller_);
        loader.load_stills();
        KeyPipeline pipeline(plan, loader, node, node, inputs, caller_);
        const bool good = pipeline.run();
        keyed_ = pipeline.stats().frames;
        return good;
    }
    // The values in a corner of the outputs; -1 where there is none.
    std::vector<float> outputs() const {
        std::vector<float> values;
        for (int n = 1; n <= kFrames; ++n) {
            const bool there = std::filesystem::exists(name("out", n));
            values.push_back(there ? read_image(name("out", n)).line(kBlue, 3)[4] : -1.0f);
        }
        return values;
    }

    AbortFlag abort_;
    Caller caller_;
    std::mutex mutex_;
    std::string warnings_;
    double done_ = 0.0;
    double abort_at_ = kFrames + 1;
    int keyed_ = 0;
};

// Two frames are bad at first. Resuming keys these two and one that was cut off, not one that is whole.
TEST_F(KeyPipelineTest, BadFramesAreLeftOutAndResumeFillsThemIn) {
    cut(name("fg", 2), 0.5);
    std::filesystem::remove(name("fg", 5));
    EXPECT_FALSE(run());
    EXPECT_EQ(keyed_, kFrames - 2);
    EXPECT_EQ(outputs(), (std::vector<float>{101, -1, 103, 104, -1, 106}));
    EXPECT_EQ(done_, kFrames);
    for (const int bad : {2, 5}) EXPECT_NE(warnings_.find(name("fg", bad) + ": "), std::string::npos);

    for (const int frame : {2, 5, 6}) write_flat(name("fg", frame), 5, 10 * frame);
    cut(name("out", 3), 0.99);
    EXPECT_TRUE(run(true));
    EXPECT_EQ(keyed_, 3);
    EXPECT_EQ(outputs(), (std::vector<float>{101, 120, 103, 104, 150, 106}));
}

TEST_F(KeyPipelineTest, AnAbortLeavesOnlyWholeFiles) {
    abort_at_ = 2.0 + 1.0 / kHeight;  // in the third frame
    const int before = files();
    EXPECT_THROW(run(), Interrupted);
    const std::vector<float> values = outputs();
    const auto whole = kFrames - std::count(values.begin(), values.end(), -1.0f);
    EXPECT_LE(whole, 2);
    EXPECT_EQ(files(), before + whole) << "no temporary file is left";
}

}  // namespace
