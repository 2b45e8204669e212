// Every format that can be written, with the metadata of formats that can be read.
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/strutil.h>

#include <cmath>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

constexpr int kWidth = 61;
constexpr int kHeight = 43;

// The first extension of each format with a writer for colour.
std::vector<std::string> writable() {
    std::vector<std::string> found;
    for (const std::string& format :
         OIIO::Strutil::splits(OIIO::get_string_attribute("extension_list"), ";")) {
        const std::string name = format.substr(0, format.find(':'));
        const std::string extension = OIIO::Strutil::splits(format.substr(name.size() + 1), ",").front();
        const bool colour = name != "null" && name != "term" && name != "zfile";
        if (colour && OIIO::ImageOutput::create("a." + extension)) found.push_back(extension);
    }
    OIIO::geterror();
    return found;
}

void add_metadata(OIIO::ImageSpec& spec) {
    for (const char* name : {"Artist", "Copyright", "ImageDescription", "Make", "Model", "Exif:LensModel",
                             "IPTC:City", "IPTC:Caption", "Keywords", "GPS:LatitudeRef"}) {
        spec.attribute(name, std::string("some text"));
    }
    spec.attribute("Exif:DateTimeOriginal", "2023:01:02 03:04:05");
    spec.attribute("ExposureTime", 0.02f);
    spec.attribute("Exif:FocalLength", 35.0f);
    spec.attribute("FramesPerSecond", 24.0f);
    spec.attribute("XResolution", 300.0f);
    const float latitude[] = {52.0f, 30.0f, 0.0f};
    spec.attribute("GPS:Latitude", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 3), latitude);
    const int timecode[] = {0x01020304, 0};
    spec.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
}

OIIO::ImageSpec header_from(const std::string& path, std::size_t description) {
    OIIO::ImageSpec spec(kWidth, kHeight, 3, OIIO::TypeDesc::UINT8);
    add_metadata(spec);
    if (description > 0) spec.attribute("ImageDescription", std::string(description, 'x'));
    EXPECT_TRUE(OIIO::ImageBuf(spec).write(path)) << path;
    return read_image(path).header;
}

// Flat, but for a slope and for the last column: a lone sample behind a run is where run lengths fail.
float sample_at(int c, int x, int y) {
    if (x < 20) return 0.25f * static_cast<float>(c + 1);
    if (x < 40) return static_cast<float>((x + 3 * y) % 200 + 20 * c) / 300.0f;
    return x == kWidth - 1 ? 0.9f : 0.1f * static_cast<float>(c + 1);
}

Image picture(const OIIO::ImageSpec& header) {
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

using WrittenFormats = test::Files;

TEST_F(WrittenFormats, ReadBackWhateverTheForegroundsMetadata) {
    for (const char* source : {"jpg", "tif", "png", "exr", "dpx"}) {
        const OIIO::ImageSpec header = header_from(file(std::string("source.") + source), 0);
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
TEST_F(WrittenFormats, LeavesOutMetadataThatTheFormatCannotHold) {
    Image image = picture(header_from(file("source.tif"), 0));
    const std::vector<unsigned char> profile(300, 1);
    image.header.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, 300), profile.data());
    testing::internal::CaptureStderr();
    const std::string left_out = write_image(file("profile.png"), image, {});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "libpng prints by itself";
    EXPECT_NE(left_out.find("ICCProfile"), std::string::npos) << left_out;
    EXPECT_LT(mean_difference(file("profile.png")), 0.003);
    EXPECT_EQ(read_image(file("profile.png")).header.get_string_attribute("Artist"), "some text");

    image = picture(header_from(file("long.tif"), 100000));
    EXPECT_EQ(write_image(file("out.jpg"), image, {}), "all");
    EXPECT_LT(mean_difference(file("out.jpg")), 0.15);
    EXPECT_EQ(write_image(file("out.png"), image, {}), "");
}

}  // namespace
