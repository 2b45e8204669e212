#include "shot/frames/FrameLoader.h"

#include <fcntl.h>

#include <csignal>
#include <future>
#include <thread>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;
using namespace std::chrono_literals;

namespace {

// Holds whoever opens a file until it goes.
class Held {
  public:
    explicit Held(const std::string& path) : file_(::open(path.c_str(), O_RDWR | O_CLOEXEC)) {
        held_ = ::fcntl(file_, F_SETLEASE, F_WRLCK) == 0;
    }
    ~Held() { ::close(file_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    bool works() const { return held_; }
    bool is_waited_for() const { return ::fcntl(file_, F_GETLEASE) != F_WRLCK; }

  private:
    int file_;
    bool held_ = false;
};

using FrameLoaderTest = test::Files;

TEST_F(FrameLoaderTest, ReadsAFramesFilesSideBySide) {
    const Box box{0, 0, 4, 3};
    FrameLoader::Names names;
    for (const Input input : {kFg, kCp, kGm}) {
        const auto flat = [&](Channel, int, int) { return static_cast<float>(input + 1); };
        write_image(file(std::string(kInputNames[input]) + ".7.exr"),
                    test::image_of(box, box, is_matte_input(input) ? ChannelSet(kAlpha) : kMaskRgb, flat),
                    {});
        names[input] = PictureName(file(std::string(kInputNames[input]) + ".#.exr"));
    }
    FrameLoader loader(names, Fit::kNone, {}, {});

    ::signal(SIGIO, SIG_IGN);  // which tells that a lease is to be given back
    std::vector<std::unique_ptr<Held>> held;
    for (const Input input : {kFg, kCp, kGm}) held.push_back(std::make_unique<Held>(names[input].at(7)));
    ASSERT_TRUE(held[0]->works()) << "the file system of " << folder_ << " grants no leases";
    auto loaded = std::async(std::launch::async, [&] { return loader.load(7); });
    const auto all_waited_for = [&] {
        return std::all_of(held.begin(), held.end(), [](const auto& file) { return file->is_waited_for(); });
    };
    for (int tries = 0; tries < 1000 && !all_waited_for(); ++tries) std::this_thread::sleep_for(10ms);
    EXPECT_TRUE(all_waited_for());
    held.clear();

    const FrameInputs inputs = loaded.get();
    EXPECT_EQ(inputs[kFg].image->line(kGreen, 2)[3], 1.0f);
    EXPECT_EQ(inputs[kCp].image->line(kGreen, 2)[3], 2.0f);
    EXPECT_EQ(inputs[kGm].image->line(kAlpha, 2)[3], 4.0f);
    EXPECT_EQ(inputs[kBg].image, nullptr);
}

}  // namespace
