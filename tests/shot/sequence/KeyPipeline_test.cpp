#include "shot/sequence/KeyPipeline.h"

#include <mutex>

#include "shot/Files.h"
#include "shot/sequence/KeyFingerprints.h"
#include "shot/sequence/KeyResume.h"
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
            if (done >= end_at_) end_.raise();
            std::error_code gone;  // moved, which writers beside it cannot disturb
            if (done >= vanish_at_) std::filesystem::rename(file("out"), file("elsewhere"), gone);
        };
    }

    std::string name(const std::string& what, int frame) const {
        return file(what + "." + std::to_string(frame) + ".exr");
    }
    void write_flat(int frame, int value) const {
        const auto flat = [&](Channel, int, int) { return static_cast<float>(value); };
        write_image(name("fg", frame), test::image_of(kBox, kBox, kMaskRgb, flat), {.overwrite = true});
    }
    bool run(bool resume = false, const std::string& program = "veloxa 1") {
        SetupOptions options;
        options.inputs[kFg] = file("fg.#.exr");
        options.settings.sets = {"screen_color=0,0,0"};
        options.frames = "1-6";
        KeySetup setup(options, caller_);
        KeyPlan plan;
        plan.frames = setup.frames();
        plan.outputs = parse_outputs({output_});
        plan.write.overwrite = plan.resume = resume;
        plan.threads = 2;
        plan.end = &end_;
        plan.program = program;
        check_outputs(plan, setup.names());
        plan.fingerprints = fingerprints_of(setup, options, plan, {}, &abort_);
        Node& node = setup.node();
        KeyPipeline pipeline(plan, setup.loader(), node, node.image(), setup.inputs(), caller_);
        const bool good = pipeline.run();
        may_mend_ = pipeline.stats().may_mend;
        left_ = pipeline.stats().counts.left;
        keyed_ = pipeline.stats().frames;
        counts_ = counts_text(pipeline.stats().counts);
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

    std::string output_ = file("out.%d.exr");
    AbortFlag abort_;
    Caller caller_;
    std::mutex mutex_;
    std::string warnings_;
    double done_ = 0.0;
    double abort_at_ = kFrames + 1;
    double end_at_ = kFrames + 1;
    double vanish_at_ = kFrames + 1;
    AbortFlag end_;
    int keyed_ = 0;
    int left_ = 0;
    bool may_mend_ = false;
    std::string counts_;
};

// Two frames are bad at first. Resuming keys these two and one that was cut off and one of whose foreground
// is another now, not those that are whole; what another program made is stale.
TEST_F(KeyPipelineTest, BadFramesAreLeftOutAndResumeFillsThemIn) {
    cut(name("fg", 2), 0.5);
    std::filesystem::remove(name("fg", 5));
    EXPECT_FALSE(run());
    EXPECT_EQ(keyed_, kFrames - 2);
    EXPECT_EQ(counts_, "6 frames: 4 made, 0 kept, 0 stale and made again, 2 failed");
    EXPECT_EQ(outputs(), (std::vector<float>{1, -1, 3, 4, -1, 6}));
    EXPECT_EQ(done_, kFrames);
    for (const int bad : {2, 5}) EXPECT_NE(warnings_.find(name("fg", bad) + ": "), std::string::npos);

    for (const int frame : {2, 5, 6}) write_flat(frame, 10 * frame);
    cut(name("out", 3), 0.99);
    EXPECT_TRUE(run(true));
    EXPECT_EQ(keyed_, 4);
    EXPECT_EQ(counts_, "6 frames: 3 made, 2 kept, 1 stale and made again, 0 failed");
    EXPECT_EQ(outputs(), (std::vector<float>{1, 20, 3, 4, 50, 60}));
    EXPECT_TRUE(run(true, "veloxa 2"));
    EXPECT_EQ(counts_, "6 frames: 0 made, 0 kept, 6 stale and made again, 0 failed");
}

TEST_F(KeyPipelineTest, WhatWasBegunIsFinishedWhenNoFrameIsToBegin) {
    end_at_ = 2.0;
    EXPECT_TRUE(run());
    const std::vector<float> values = outputs();
    EXPECT_TRUE(may_mend_);
    EXPECT_GT(left_, 0);
    EXPECT_EQ(keyed_, kFrames - left_);
    EXPECT_EQ(std::count(values.begin(), values.end(), -1.0f), left_);
}

TEST_F(KeyPipelineTest, AFolderThatGoesMayComeBackAndABrokenFrameDoesNot) {
    cut(name("fg", 2), 0.5);
    EXPECT_FALSE(run());
    EXPECT_FALSE(may_mend_);
    std::filesystem::create_directory(file("out"));
    output_ = file("out/f.%d.exr");
    vanish_at_ = 3.0;
    EXPECT_FALSE(run());
    EXPECT_TRUE(may_mend_);
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
