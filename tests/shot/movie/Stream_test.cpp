// Streams of frames, written and read.
#include <fcntl.h>

#include <cmath>
#include <csignal>
#include <fstream>
#include <thread>

#include "shot/Files.h"
#include "shot/movie/StreamReader.h"
#include "shot/movie/StreamWriter.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

constexpr Box kBox{0, 0, 31, 7};
constexpr int kFrames = 4;

class Stream : public test::Files {
  protected:
    ~Stream() override {
        for (const int one : open_) ::close(one);
    }
    int opened(const std::string& path, int flags) {
        open_.push_back(::open(path.c_str(), flags | O_CLOEXEC, 0600));
        return open_.back();
    }
    std::array<int, 2> pipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        open_.insert(open_.end(), ends.begin(), ends.end());
        return ends;
    }
    static int whole(int frame, Channel c, int x, int y) {
        return (frame * 9973 + c * 4001 + x * 211 + y * 17) % 65536;
    }
    static Image frame_of(int frame, const Box& box = kBox) {
        Image image = test::image_of(box, box, kMaskRgba, [&](Channel c, int x, int y) {
            return static_cast<float>(whole(frame, c, x, y)) / 65535.0f;
        });
        image.info.format.pixel_aspect = 2.0f;
        return image;
    }
    // A gap is left before the third frame.
    static FrameTime time_of(int frame) { return {(frame > 2 ? frame + 5 : frame) * 1001, 1001}; }
    std::string written() {
        const std::string path = file("frames.nut");
        StreamWriter writer(opened(path, O_CREAT | O_TRUNC | O_WRONLY), "out", info_, {});
        for (int n = 1; n <= kFrames; ++n) writer.write(frame_of(n), time_of(n));
        writer.finish();
        return path;
    }
    // How many frames come, and what is told of what ends them.
    void expect_damage(const std::string& path, int frames, const std::string& told) {
        int count = 0;
        const std::string text = test::told_by([&] {
            StreamReader reader(opened(path, O_RDONLY), "in", 1, nullptr);
            while (reader.read()) ++count;
        });
        EXPECT_EQ(count, frames) << text;
        EXPECT_TRUE(text.starts_with(told)) << text;
    }

    const StreamInfo info_{{1, 24000}, {24000, 1001}, {{"timecode", "01:00:00:00"}}, {{"title", "Shot 7"}}};
    std::vector<int> open_;
};

TEST_F(Stream, ComesBackAsItWasWritten) {
    StreamReader reader(opened(written(), O_RDONLY), "in", 1001, nullptr);
    EXPECT_EQ(reader.info().frame_rate, info_.frame_rate);
    EXPECT_EQ(reader.info().tags, info_.tags);
    EXPECT_EQ(reader.info().video_tags.at(0), info_.video_tags.at(0));
    const double unit = static_cast<double>(reader.info().time_base.num) / reader.info().time_base.den;
    for (int n = 1; n <= kFrames; ++n) {
        const auto frame = reader.read();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->number, 1000 + n);
        EXPECT_DOUBLE_EQ(static_cast<double>(frame->time.start) * unit,
                         static_cast<double>(time_of(n).start) / 24000);
        EXPECT_EQ(frame->image.info.format.pixel_aspect, 2.0f);
        std::array<int, 2> rate{};
        frame->image.header.getattribute("FramesPerSecond", OIIO::TypeRational, rate.data());
        EXPECT_EQ(rate, (std::array{24000, 1001}));
        for (const Channel c : kMaskRgba) {
            const double read = static_cast<double>(frame->image.line(c, 5)[11]);
            EXPECT_EQ(std::lround(read * 65535), whole(n, c, 11, 5)) << n;
        }
    }
    EXPECT_FALSE(reader.read());
}

TEST_F(Stream, DamageIsToldWithTheFrame) {
    const std::string path = written();
    const auto size = static_cast<double>(std::filesystem::file_size(path));
    const struct {
        double keep;
        int frames;
        std::string told;
    } cuts[]{
        {0.9, 3, "in: frame 4: is cut off"},
        {0.6, 2, "in: frame 3: is cut off"},
        {60 / size, 0, "in: the stream's header is damaged or cut off"},
        {20 / size, 0, "in: is no NUT stream"},
        {0.0, 0, "in: is empty"},
    };
    for (const auto& [keep, frames, told] : cuts) {
        cut(written(), keep);
        expect_damage(path, frames, told);
    }
    {
        std::fstream bytes(written(), std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(static_cast<std::streamoff>(0.47 * size));
        bytes << std::string(2000, 'N');  // over the head of the third frame
    }
    expect_damage(path, 2, "in: frame 3: ");
}

TEST_F(Stream, TheWriterSaysWhatItCannotWrite) {
    std::signal(SIGPIPE, SIG_IGN);
    const auto closed = pipe();
    StreamWriter writer(closed[1], "out", info_, {});
    ::close(closed[0]);
    std::erase(open_, closed[0]);
    EXPECT_EQ(test::told_by([&] { writer.write(frame_of(1), time_of(1)); }), "out: nobody reads it any more");
    EXPECT_EQ(test::told_by([] { check_stream("out", {.depth = Depth::FLOAT}); }),
              "out: a stream of frames cannot hold float samples; it holds uint8 or uint16");
    StreamWriter other(opened(file("out.nut"), O_CREAT | O_WRONLY), "out", info_, {});
    other.write(frame_of(1), time_of(1));
    EXPECT_EQ(test::told_by([&] {
                  other.write(frame_of(2, {0, 0, 32, 7}), time_of(2));
              }),
              "out: a frame is 32x7, the first was 31x7");
}

TEST_F(Stream, NobodyWaitsForGood) {
    const auto wait = [] { std::this_thread::sleep_for(std::chrono::milliseconds(100)); };
    AbortFlag flag;
    const auto idle = pipe();
    const std::jthread raise([&] { wait(), flag.raise(); });
    EXPECT_THROW(StreamReader(idle[0], "in", 1, &flag), Interrupted);
    const auto full = pipe();
    StreamWriter writer(full[1], "out", info_, {});
    const std::jthread stop([&] { wait(), writer.stop(); });
    const auto write = [&] {
        for (int n = 1; n < 1000; ++n) writer.write(frame_of(n), time_of(n));
    };
    EXPECT_THROW(write(), Interrupted);
}

}  // namespace
