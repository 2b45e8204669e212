// A folder and images for tests that read and write files.
#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "shot/Errors.h"
#include "shot/files/ImageFile.h"

namespace test {

// Of each test's own, for tests run side by side; gone with the test.
class Files : public testing::Test {
  protected:
    Files() { std::filesystem::create_directories(folder_); }
    ~Files() override { std::filesystem::remove_all(folder_); }

    std::string file(const std::string& name) const { return (folder_ / name).string(); }
    int files() const {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(folder_), {}));
    }
    // Keeps a share of its bytes.
    static void cut(const std::string& path, double share) {
        const auto size = static_cast<double>(std::filesystem::file_size(path));
        std::filesystem::resize_file(path, static_cast<std::uintmax_t>(size * share));
    }

    const std::filesystem::path folder_ =
        std::filesystem::path(testing::TempDir()) /
        (std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
         std::to_string(::getpid()));
};

// What the error says that ends this; nothing where none does.
template <class Work>
std::string told_by(const Work& work) {
    try {
        work();
    } catch (const veloxa::Error& error) {
        return error.what();
    }
    return {};
}

// Each pixel is what value(channel, x, y) says.
template <class Value>
veloxa::Image image_of(const Zo::Image::Box& box, const Zo::Image::Box& frame,
                       const Zo::Image::ChannelSet& channels, const Value& value) {
    Zo::Image::Info info;
    info.box = box;
    info.format.box = frame;
    info.channels = channels;
    veloxa::Image image(info);
    for (const Zo::Image::Channel c : channels) {
        for (int y = box.y; y < box.t; ++y) {
            for (int x = box.x; x < box.r; ++x) image.line(c, y)[x - box.x] = value(c, x, y);
        }
    }
    return image;
}

}  // namespace test
