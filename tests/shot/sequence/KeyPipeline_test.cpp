#include "shot/sequence/KeyPipeline.h"

#include <mutex>

#include "shot/Files.h"
#include "shot/setup/KeySetup.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

constexpr int kFrames = 6;
constexpr Box kBox{0, 0, 5, 4};

// Flat frames that pass through, as no screen colour is set.
class KeyPipelineTest : public test::Files {
  protected:
    KeyPipelineTest() {
        for (int frame = 1; frame <= kFrames; ++frame) write_flat(frame, frame);
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
    void write_flat(int frame, int value) const {
        const auto flat = [&](Channel, int, int) { return static_cast<float>(value); };
        write_image(name("fg", frame), test::image_of(kBox, kBox, kMaskRgb, flat), {.overwrite = true});
    }
    bool run(bool resume = false) {
        SetupOptions options;
        options.inputs[kFg] = file("fg.#.exr");
        options.settings.sets = {"screen_color=0,0,0"};
        options.frames = "1-6";
        KeySetup setup(options, caller_);
        KeyPlan plan;
        plan.frames = setup.frames();
        plan.outputs = parse_outputs({file("out.%d.exr")});
        plan.write.overwrite = plan.resume = resume;
        plan.threads = 2;
        check_outputs(plan, setup.names());
        Node& node = setup.node();
        KeyPipeline pipeline(plan, setup.loader(), node, node.image(), setup.inputs(), caller_);
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
    EXPECT_EQ(outputs(), (std::vector<float>{1, -1, 3, 4, -1, 6}));
    EXPECT_EQ(done_, kFrames);
    for (const int bad : {2, 5}) EXPECT_NE(warnings_.find(name("fg", bad) + ": "), std::string::npos);

    for (const int frame : {2, 5, 6}) write_flat(frame, 10 * frame);
    cut(name("out", 3), 0.99);
    EXPECT_TRUE(run(true));
    EXPECT_EQ(keyed_, 3);
    EXPECT_EQ(outputs(), (std::vector<float>{1, 20, 3, 4, 50, 6}));
}

TEST_F(KeyPipelineTest, AnAbortLeavesOnlyWholeFiles) {
    abort_at_ = 2.0 + 1.0 / kBox.height();  // in the third frame
    const int before = files();
    EXPECT_THROW(run(), Interrupted);
    const std::vector<float> values = outputs();
    const auto whole = kFrames - std::count(values.begin(), values.end(), -1.0f);
    EXPECT_LE(whole, 2);
    EXPECT_EQ(files(), before + whole) << "no temporary file is left";
}

}  // namespace
