#include "KeyPipeline.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "Errors.h"
#include "ZoImage/Iop.h"

using namespace veloxa;
using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

constexpr Box kFrame{0, 0, 5, 4};
constexpr int kFrames = 6;

// Foreground plus the clean plate's red, in every channel; calls `on_row` first.
class AddRed final : public Iop {
  public:
    AddRed() : Iop(NodeContext{"AddRed"}) { inputs(2); }
    const char* class_name() const override { return "AddRed"; }
    std::function<void()> on_row = [] {};

  protected:
    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override {
        input(0).request(x, y, r, t, channels, count);
        input(1).request(x, y, r, t, kRed, count);
    }
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override {
        on_row();
        Row plate(x, r);
        plate.get(input(1), y, kRed);
        row.get(input(0), y, channels);
        for (const Channel c : channels) {
            float* out = row.writable(c);
            for (std::size_t i = 0; i < row.width(); ++i) out[i] += plate[kRed][i];
        }
    }
};

class KeyPipelineTest : public testing::Test {
  protected:
    KeyPipelineTest() {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        for (int frame = 1; frame <= kFrames; ++frame)
            write_flat(name("fg", frame), static_cast<float>(frame));
        write_flat(name("cp", 0), 100.0f);
        names_[kFg] = FramePattern((folder_ / "fg.#.exr").string());
        names_[kCp] = FramePattern(name("cp", 0));
        inputs_.connect(node_, names_);
    }
    ~KeyPipelineTest() override { fs::remove_all(folder_); }

    std::string name(const std::string& what, int frame) const {
        return (folder_ / (what + "." + std::to_string(frame) + ".exr")).string();
    }
    void write_flat(const std::string& path, float value) const {
        Info info;
        info.box = info.format.box = kFrame;
        info.channels = kMaskRgb;
        Image image(info);
        for (const Channel c : kMaskRgb) std::fill_n(image.line(c, 0), image.width() * image.height(), value);
        write_image(path, image, {.overwrite = true});
    }
    bool run(bool resume = false) {
        KeyPlan plan;
        plan.frames = {1, kFrames, 1};
        plan.output = FramePattern((folder_ / "out.%d.exr").string());
        plan.write.abort = &abort_;
        plan.write.overwrite = resume;
        plan.resume = resume;
        plan.threads = 2;
        FrameLoader loader(names_, Fit::kRefuse, &abort_);
        loader.load_stills();
        Progress progress(kFrames, true);
        KeyPipeline pipeline(plan, loader, node_, node_, inputs_, progress);
        const bool good = pipeline.run();
        keyed_ = pipeline.stats().frames;
        return good;
    }
    // The value in a corner of an output; -1 when there is none.
    float output(int frame) const {
        return fs::exists(name("out", frame)) ? read_image(name("out", frame)).line(kBlue, 3)[4] : -1.0f;
    }
    int files() const {
        return static_cast<int>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }

    const fs::path folder_ =
        fs::path(testing::TempDir()) /
        (std::string("pipeline_") + testing::UnitTest::GetInstance()->current_test_info()->name());
    AbortFlag abort_;
    FrameLoader::Names names_;
    NodeInputs inputs_;
    AddRed node_;
    int keyed_ = 0;
};

TEST_F(KeyPipelineTest, EachFrameIsKeyedFromItsOwnForeground) {
    EXPECT_TRUE(run());
    for (int frame = 1; frame <= kFrames; ++frame)
        EXPECT_EQ(output(frame), 100.0f + static_cast<float>(frame));
}

TEST_F(KeyPipelineTest, BadFramesAreLeftOutAndResumeFillsThemIn) {
    fs::resize_file(name("fg", 2), fs::file_size(name("fg", 2)) / 2);
    fs::remove(name("fg", 5));
    EXPECT_FALSE(run());
    EXPECT_EQ(keyed_, kFrames - 2);
    EXPECT_EQ(output(2), -1.0f);
    EXPECT_EQ(output(5), -1.0f);
    EXPECT_EQ(output(6), 106.0f);

    write_flat(name("fg", 2), 20.0f);
    write_flat(name("fg", 5), 50.0f);
    write_flat(name("fg", 6), 60.0f);
    fs::resize_file(name("out", 3), fs::file_size(name("out", 3)) - 1);
    EXPECT_TRUE(run(true));
    EXPECT_EQ(keyed_, 3) << "the two that were missing and the one that was cut off";
    EXPECT_EQ(output(2), 120.0f);
    EXPECT_EQ(output(3), 103.0f);
    EXPECT_EQ(output(5), 150.0f);
    EXPECT_EQ(output(6), 106.0f) << "was whole";
}

TEST_F(KeyPipelineTest, AnAbortLeavesOnlyWholeFiles) {
    int rows = 0;
    node_.on_row = [&] {
        static std::mutex mutex;
        const std::lock_guard hold(mutex);
        if (++rows == 2 * kFrame.t + 1) abort_.raise();  // in the third frame
    };
    const int before = files();
    EXPECT_THROW(run(), Interrupted);
    int whole = 0;
    for (int frame = 1; frame <= kFrames; ++frame) whole += output(frame) >= 0.0f ? 1 : 0;
    EXPECT_LE(whole, 2);
    EXPECT_EQ(files(), before + whole) << "no temporary file is left";
}

TEST_F(KeyPipelineTest, AnotherSizeIsABadFrame) {
    Info info;
    info.box = info.format.box = {0, 0, 7, 4};
    info.channels = kMaskRgb;
    Image wide(info);
    for (const Channel c : kMaskRgb) std::fill_n(wide.line(c, 0), wide.width() * wide.height(), 0.0f);
    write_image(name("cp", 0), wide, {.overwrite = true});
    EXPECT_FALSE(run());
    EXPECT_EQ(keyed_, 0);
}

}  // namespace
