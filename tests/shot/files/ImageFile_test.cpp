// Single files, written and read.
#include <OpenImageIO/imagebuf.h>

#include <cmath>
#include <fstream>
#include <numeric>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

using ImageFile = test::Files;

// A value that tells channel and pixel: x + 10 y + 1000 c, as a fraction that half holds exactly.
float mark(Channel c, int x, int y) {
    return static_cast<float>(x + 16 * y + 256 * (c - kRed)) / 1024.0f;
}

Image marked(const Box& box, const Box& frame, ChannelSet channels) {
    return test::image_of(box, frame, channels, mark);
}

// What the library itself reads at a file's column and row.
std::vector<float> stored(const std::string& path, int x, int y) {
    const OIIO::ImageBuf stored(path);
    std::vector<float> pixel(static_cast<std::size_t>(stored.nchannels()));
    stored.getpixel(x, y, pixel.data());
    return pixel;
}

void write_raw(const std::string& path, const OIIO::ImageSpec& spec, std::vector<float> pixels) {
    ASSERT_TRUE(OIIO::ImageBuf(spec, pixels.data()).write(path)) << path;
}

// A display window from (10, 20) of 6 x 5; the data window starts one column to the left of it and two rows
// below its top, and reaches one row below its bottom: file rows 22 to 25, the frame's last row being 24.
TEST_F(ImageFile, WindowsCountFromTheBottomOfTheDisplayWindow) {
    OIIO::ImageSpec spec(OIIO::ROI(9, 12, 22, 26, 0, 1, 0, 1), OIIO::TypeDesc::FLOAT);
    OIIO::set_roi_full(spec, OIIO::ROI(10, 16, 20, 25, 0, 1, 0, 1));
    spec.attribute("PixelAspectRatio", 2.0f);
    spec.attribute("FramesPerSecond", 24.0f);
    write_raw(file("in.exr"), spec, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});

    const Image image = read_image(file("in.exr"));
    EXPECT_EQ(image.info.box, (Box{-1, -1, 2, 3}));
    EXPECT_EQ(image.info.format.box, (Box{0, 0, 6, 5}));
    EXPECT_EQ(image.info.format.pixel_aspect, 2.0);
    EXPECT_EQ(image.line(kRed, -1)[0], 9.0f);
    EXPECT_EQ(image.line(kRed, 2)[2], 2.0f);
    EXPECT_EQ(image.info.channels, kMaskRgb);
    EXPECT_EQ(image.plane(kBlue), image.plane(kRed)) << "grey fills all three";

    write_image(file("out.exr"), image, {.depth = Depth::FLOAT});
    const OIIO::ImageBuf written(file("out.exr"));
    const OIIO::ImageSpec& out = written.spec();
    EXPECT_EQ(written.roi(), OIIO::ROI(9, 12, 22, 26, 0, 1, 0, 3));
    EXPECT_EQ(written.roi_full(), OIIO::ROI(10, 16, 20, 25, 0, 1, 0, 3));
    EXPECT_EQ(out.get_float_attribute("PixelAspectRatio"), 2.0f);
    EXPECT_EQ(out.get_float_attribute("FramesPerSecond"), 24.0f);
    EXPECT_THAT(stored(file("out.exr"), 9, 25), testing::ElementsAre(9.0f, 9.0f, 9.0f));

    // A format without a data window gets the frame; outside the data it is black.
    write_image(file("out.png"), image, {});
    EXPECT_THAT(stored(file("out.png"), 0, 1), testing::Each(0.0f));
    EXPECT_THAT(stored(file("out.png"), 0, 2), testing::Each(1.0f)) << "the sample 1";
    EXPECT_THAT(stored(file("out.png"), 2, 4), testing::Each(0.0f));
}

// Alpha multiplies and divides nothing: the marks of colour lie above and below those of alpha.
TEST_F(ImageFile, EveryFormatGivesBackWhatItHolds) {
    const Box frame{0, 0, 7, 5};
    const Image image = marked(frame, frame, kMaskRgba);
    const struct {
        const char* name;
        Depth depth;
        double tolerance;
    } cases[] = {{"a.exr", Depth::HALF, 0.0},           {"b.exr", Depth::FLOAT, 0.0},
                 {"c.png", Depth::UINT8, 0.5 / 255},    {"d.png", Depth::UINT16, 0.5 / 65535},
                 {"e.tif", Depth::FLOAT, 0.0},          {"f.tif", Depth::UINT8, 0.5 / 255},
                 {"g.dpx", Depth::UINT16, 0.5 / 65535}, {"h.tga", Depth::UINT8, 0.5 / 255}};
    for (const auto& c : cases) {
        write_image(file(c.name), image, {.depth = c.depth});
        const Image back = read_image(file(c.name));
        ASSERT_EQ(back.info.box, frame) << c.name;
        ASSERT_EQ(back.info.channels, kMaskRgba) << c.name;
        for (const Channel channel : kMaskRgba) {
            for (std::size_t i = 0; i < 35; ++i) {
                EXPECT_NEAR(back.plane(channel)[i], image.plane(channel)[i], c.tolerance * 1.001) << c.name;
            }
        }
    }
    write_image(file("i.jpg"), image, {});
    EXPECT_EQ(read_image(file("i.jpg")).info.channels, kMaskRgb);
}

TEST_F(ImageFile, IntegersClampAndRoundAndTurnNaNToBlack) {
    Image image = marked({0, 0, 6, 1}, {0, 0, 6, 1}, kMaskRgb);
    const float values[] = {NAN, -3.0f, 1e30f, 0.5f / 255.0f, 0.499f / 255.0f, 254.51f / 255.0f};
    const float expected[] = {0, 0, 255, 1, 0, 255};
    for (const Channel c : kMaskRgb) std::copy_n(values, 6, image.line(c, 0));
    write_image(file("a.png"), image, {.depth = Depth::UINT8});
    for (int x = 0; x < 6; ++x) {
        const auto value = testing::FloatNear(expected[x] / 255.0f, 1e-6f);
        EXPECT_THAT(stored(file("a.png"), x, 0), testing::Each(value)) << x;
    }
    // Read they are the floats that other programs see.
    std::vector<std::uint8_t> levels(256);
    std::iota(levels.begin(), levels.end(), std::uint8_t{0});
    const OIIO::ImageSpec spec(256, 1, 1, OIIO::TypeDesc::UINT8);
    ASSERT_TRUE(OIIO::ImageBuf(spec, levels.data()).write(file("a.png")));
    const Image read = read_image(file("a.png"));
    for (int x = 0; x < 256; ++x) EXPECT_EQ(read.line(kRed, 0)[x], stored(file("a.png"), x, 0)[0]) << x;
}

TEST_F(ImageFile, ChannelsAreFoundByNameThenByOrder) {
    const struct {
        std::vector<std::string> names;
        std::vector<int> rgba;  // the file's channel behind each; -1 for none
        int matte;
    } cases[] = {{{"A", "B", "G", "R"}, {3, 2, 1, 0}, 0},
                 {{"R", "G", "B", "Z"}, {0, 1, 2, -1}, 0},
                 {{"Y"}, {0, 0, 0, -1}, 0},
                 {{"Y", "A"}, {0, 0, 0, 1}, 1},
                 {{"p", "q", "r2"}, {0, 1, 2, -1}, 0},
                 {{"p", "q", "s", "t", "u"}, {0, 1, 2, 3}, 3},
                 {{"u.x", "R", "G", "B", "A"}, {1, 2, 3, 4}, 4}};
    for (const auto& c : cases) {
        OIIO::ImageSpec spec(1, 1, static_cast<int>(c.names.size()), OIIO::TypeDesc::FLOAT);
        spec.channelnames = c.names;
        std::vector<float> pixels;
        for (std::size_t n = 0; n < c.names.size(); ++n) pixels.push_back(static_cast<float>(n + 1));
        write_raw(file("a.exr"), spec, pixels);
        const Image image = read_image(file("a.exr"));
        std::vector<int> found;
        for (const Channel channel : kMaskRgba) {
            found.push_back(image.has(channel) ? static_cast<int>(image.line(channel, 0)[0]) - 1 : -1);
        }
        EXPECT_EQ(found, c.rgba) << testing::PrintToString(c.names);
        const Image matte = read_matte(file("a.exr"));
        EXPECT_EQ(matte.info.channels, kMaskAlpha);
        EXPECT_EQ(static_cast<int>(matte.line(kAlpha, 0)[0]) - 1, c.matte) << testing::PrintToString(c.names);
    }
}

TEST_F(ImageFile, BadFilesAreRefused) {
    const Image image = marked({0, 0, 40, 30}, {0, 0, 40, 30}, kMaskRgba);
    std::vector<std::string> bad{file("missing.exr"), folder_.string(), file("empty.exr"),
                                 file("text.exr"),    file("text.xyz"), file("a.null")};
    std::ofstream(file("empty.exr"));
    for (const char* name : {"text.exr", "text.xyz", "a.null"}) std::ofstream(file(name)) << "not an image\n";
    for (const char* type : {"exr", "png", "tif", "jpg", "dpx"}) {
        const std::string whole = file(std::string("whole.") + type);
        write_image(whole, image, {});
        EXPECT_TRUE(is_whole_image(whole)) << whole;
        for (const double part : {0.1, 0.5, 0.9, 0.999}) {
            bad.push_back(file("cut" + std::to_string(part) + "." + type));
            fs::copy_file(whole, bad.back());
            cut(bad.back(), part);
        }
    }
    for (const std::string& path : bad) {
        const std::string told = test::told_by([&] { read_image(path); });
        EXPECT_THAT(told,
                    testing::AllOf(testing::StartsWith(path + ": "), testing::Not(testing::HasSubstr("\n"))));
        EXPECT_FALSE(is_whole_image(path)) << path;
    }
}

TEST_F(ImageFile, NothingIsLeftOfAFileThatFails) {
    const Image image = marked({0, 0, 4, 4}, {0, 0, 4, 4}, kMaskRgba);
    AbortFlag raised;
    raised.raise();
    write_image(file("there.exr"), image, {});
    EXPECT_NO_THROW(write_image(file("there.exr"), image, {.overwrite = true}));
    EXPECT_THROW(write_image(file("new.exr"), image, {.abort = &raised}), Interrupted);
    const std::pair<const char*, WriteOptions> bad[] = {{"there.exr", {}},
                                                        {"new.xyz", {}},
                                                        {"new.exr", {.depth = Depth::UINT8}},
                                                        {"new.png", {.depth = Depth::HALF}},
                                                        {"none/new.exr", {}}};
    for (const auto& [name, options] : bad) {
        EXPECT_THROW(check_writable(file(name), options), Error) << name;
        EXPECT_THROW(write_image(file(name), image, options), Error) << name;
    }
    EXPECT_NO_THROW(check_writable(file("new.exr"), {.depth = Depth::HALF}));
    EXPECT_EQ(files(), 1) << "only there.exr";
}

// Every format that can be written, with the metadata of formats that can be read.
constexpr int kWidth = 61;
constexpr int kHeight = 43;

// The first extension of each format with a writer for colour.
std::vector<std::string> writable() {
    std::vector<std::string> found;
    for (const auto& [name, extensions] : OIIO::get_extension_map()) {
        const bool colour = name != "null" && name != "term" && name != "zfile";
        if (colour && OIIO::ImageOutput::create("a." + extensions[0])) found.push_back(extensions[0]);
    }
    OIIO::geterror();
    return found;
}

Header header_from(const std::string& path, const std::string& description = "some text") {
    OIIO::ImageSpec spec(kWidth, kHeight, 3, OIIO::TypeDesc::UINT8);
    for (const char* name : {"Artist", "Copyright", "Make", "Model", "Exif:LensModel", "IPTC:City",
                             "IPTC:Caption", "Keywords", "GPS:LatitudeRef"}) {
        spec.attribute(name, std::string("some text"));
    }
    spec.attribute("ImageDescription", description);
    spec.attribute("Exif:DateTimeOriginal", "2023:01:02 03:04:05");
    spec.attribute("ExposureTime", 0.02f);
    spec.attribute("Exif:FocalLength", 35.0f);
    spec.attribute("FramesPerSecond", 24.0f);
    spec.attribute("XResolution", 300.0f);
    const float latitude[] = {52.0f, 30.0f, 0.0f};
    spec.attribute("GPS:Latitude", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 3), latitude);
    const int timecode[] = {0x01020304, 0};
    spec.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    EXPECT_TRUE(OIIO::ImageBuf(spec).write(path)) << path;
    return read_image(path).header;
}

// Flat, but for a slope and for the last column: a lone sample behind a run is where run lengths fail.
float sample_at(int c, int x, int y) {
    if (x < 20) return 0.25f * static_cast<float>(c + 1);
    if (x < 40) return static_cast<float>((x + 3 * y) % 200 + 20 * c) / 300.0f;
    return x == kWidth - 1 ? 0.9f : 0.1f * static_cast<float>(c + 1);
}

Image picture(const Header& header) {
    const Box box{0, 0, kWidth, kHeight};
    Image image = test::image_of(
        box, box, kMaskRgba, [](Channel c, int x, int y) { return sample_at(c - kRed, x, kHeight - 1 - y); });
    image.header = header;
    return image;
}

// The mean difference that the library itself finds; lossy formats are off by more at the edges.
double mean_difference(const std::string& path) {
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    OIIO::ImageBuf file(path, 0, 0, nullptr, &config);
    if (!file.read(0, 0, true, OIIO::TypeDesc::FLOAT) || file.spec().width != kWidth ||
        file.spec().height != kHeight)
        return 1e9;
    double sum = 0.0;
    for (OIIO::ImageBuf::ConstIterator<float> pixel(file); !pixel.done(); ++pixel) {
        for (int c = 0; c < file.nchannels(); ++c)
            sum += std::abs(pixel[c] - sample_at(c, pixel.x(), pixel.y()));
    }
    return sum / (kWidth * kHeight * file.nchannels());
}

TEST_F(ImageFile, ReadBackWhateverTheForegroundsMetadata) {
    for (const char* source : {"jpg", "tif", "png", "exr", "dpx"}) {
        const Header header = header_from(file(std::string("source.") + source));
        const Image image = picture(header);
        for (const std::string& extension : writable()) {
            const std::string path = file("out." + extension);
            EXPECT_EQ(write_image(path, image, {.overwrite = true}), "") << source << " to " << extension;
            const bool exact = extension != "jpg" && extension != "webp" && extension != "heic" &&
                               extension != "gif" && extension != "hdr";
            EXPECT_LT(mean_difference(path), exact ? 0.003 : 0.15) << source << " to " << extension;
        }
        if (!header.get_string_attribute("Exif:LensModel").empty()) {
            EXPECT_EQ(read_image(file("out.tif")).header.get_string_attribute("Exif:LensModel"), "some text");
        }
    }
}

// A profile that libpng refuses, and a description that no segment of a JPEG holds.
TEST_F(ImageFile, LeavesOutMetadataThatTheFormatCannotHold) {
    Image image = picture(header_from(file("source.tif")));
    const std::vector<unsigned char> profile(300, 1);
    image.header.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, 300), profile.data());
    testing::internal::CaptureStderr();
    const std::string left_out = write_image(file("profile.png"), image, {});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "libpng prints by itself";
    EXPECT_NE(left_out.find("ICCProfile"), std::string::npos) << left_out;
    EXPECT_LT(mean_difference(file("profile.png")), 0.003);
    EXPECT_EQ(read_image(file("profile.png")).header.get_string_attribute("Artist"), "some text");

    image = picture(header_from(file("long.tif"), std::string(100000, 'x')));
    EXPECT_EQ(write_image(file("out.jpg"), image, {}), "all");
    EXPECT_LT(mean_difference(file("out.jpg")), 0.15);
    EXPECT_EQ(write_image(file("out.png"), image, {}), "");
}

}  // namespace
