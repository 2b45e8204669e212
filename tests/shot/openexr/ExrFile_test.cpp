// OpenEXR's files against the image library's own reader and writer of them.
#include "shot/openexr/ExrFile.h"

#include <OpenImageIO/imageio.h>

#include <numeric>

#include "shot/Files.h"

using namespace veloxa;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

namespace {

using ExrFile = test::Files;

// All that a header says, of the library's kind or of ours.
template <class Spec>
std::string told(const Spec& spec) {
    std::ostringstream text;
    for (const int n :
         {spec.x, spec.y, spec.width, spec.height, spec.full_x, spec.full_y, spec.full_width,
          spec.full_height, spec.tile_width, spec.tile_height, spec.alpha_channel, spec.z_channel}) {
        text << n << ' ';
    }
    text << spec.format.c_str();
    for (int n = 0; n < spec.nchannels; ++n) {
        text << ' ' << spec.channelnames[static_cast<std::size_t>(n)] << ' ' << spec.channelformat(n).c_str();
    }
    for (const OIIO::ParamValue& one : spec.extra_attribs) {
        text << '\n' << one.name().string() << ' ' << one.type().c_str() << ' ' << one.get_string();
    }
    return text.str();
}

struct Picture {
    std::string header;
    std::vector<std::byte> pixels;
    bool operator==(const Picture&) const = default;
};

Picture by_library(const std::string& path) {
    const auto input = OIIO::ImageInput::open(path);
    if (!input) return {OIIO::geterror(), {}};
    Picture picture{told(input->spec()), std::vector<std::byte>(input->spec().image_bytes(true))};
    EXPECT_TRUE(input->read_image(0, 0, 0, -1, OIIO::TypeUnknown, picture.pixels.data()));
    return picture;
}

// Every type of attribute that there is, under names of every kind.
void add_attributes(ImageSpec& spec) {
    std::vector<float> floats(16);
    std::iota(floats.begin(), floats.end(), 0.25f);
    std::vector<double> doubles(floats.begin(), floats.end());
    const std::vector<int> ints{1, 2, 3, 4, 5, 4, 64};
    const std::vector<OIIO::ustring> texts{OIIO::ustring("left"), OIIO::ustring("right")};
    using T = TypeDesc;
    const std::tuple<const char*, TypeDesc, const void*> all[] = {
        {"number", T::INT, ints.data()},
        {"real", T::FLOAT, floats.data()},
        {"long", T::DOUBLE, doubles.data()},
        {"pair", T(T::INT, T::VEC2), ints.data()},
        {"pair2", T(T::FLOAT, 2), floats.data()},
        {"pair3", T(T::DOUBLE, T::VEC2), doubles.data()},
        {"three", T(T::INT, 3), ints.data()},
        {"vector", OIIO::TypeVector, floats.data()},
        {"three3", T(T::DOUBLE, 3), doubles.data()},
        {"small", OIIO::TypeMatrix33, floats.data()},
        {"worldtocamera", OIIO::TypeMatrix, floats.data()},
        {"many", T(T::FLOAT, 7), floats.data()},
        {"large", T(T::DOUBLE, T::MATRIX44), doubles.data()},
        {"small2", T(T::DOUBLE, 9), doubles.data()},
        {"box", T(T::FLOAT, T::VEC2, T::NOSEMANTICS, 2), floats.data()},
        {"box2", T(T::INT, T::VEC2, T::NOSEMANTICS, 2), ints.data()},
        {"FramesPerSecond", OIIO::TypeRational, ints.data()},
        {"chromaticities", T(T::FLOAT, 8), floats.data()},
        {"smpte:TimeCode", OIIO::TypeTimeCode, ints.data()},
        {"smpte:KeyCode", OIIO::TypeKeyCode, ints.data()},
        {"multiView", T(T::STRING, 2), texts.data()},
        {"ICCProfile", T(T::UINT8, 16), floats.data()},
    };
    for (const auto& [name, type, value] : all) spec.attribute(name, type, value);
    for (const char* name :
         {"DateTime", "ImageDescription", "Copyright", "Software", "Make", "Exif:LensModel", "tiff:Note",
          "oiio:note", "openexr:note", "wrapmodes", "type", "a name of theirs"}) {
        spec.attribute(name, std::string("2020:02:03 04:05:06"));
    }
    for (const char* name : {"PixelAspectRatio", "XResolution", "YResolution", "ExposureTime", "FNumber",
                             "openexr:dwaCompressionLevel", "whiteLuminance", "oiio:Gamma"}) {
        spec.attribute(name, 1.5f);
    }
}

// What the library writes is read as it reads it; what is made of that is the same file for the library.
TEST_F(ExrFile, IsWhatTheImageLibraryTakesItFor) {
    const struct {
        const char* compression;
        std::vector<std::string> names;
        std::vector<TypeDesc> types;
        int tile;
    } cases[] = {
        {"zip", {"R", "G", "B", "A"}, {TypeDesc::HALF, TypeDesc::HALF, TypeDesc::HALF, TypeDesc::HALF}, 0},
        {"piz",
         {"b.right.G", "Z", "b.left.A", "id", "R"},
         {TypeDesc::HALF, TypeDesc::FLOAT, TypeDesc::HALF, TypeDesc::UINT32, TypeDesc::HALF},
         16},
        {"zips", {"Y", "u"}, {TypeDesc::UINT32, TypeDesc::HALF}, 0},
        {"dwaa:30", {"R", "G", "B"}, {TypeDesc::HALF, TypeDesc::HALF, TypeDesc::HALF}, 0},
        {"none", {"A"}, {TypeDesc::FLOAT}, 0},
        {"pxr24", {"x.Alpha", "x.Red", "Depth"}, {TypeDesc::FLOAT, TypeDesc::FLOAT, TypeDesc::FLOAT}, 32},
    };
    for (const auto& c : cases) {
        ImageSpec spec(OIIO::ROI(-3, 47, 5, 45, 0, 1, 0, static_cast<int>(c.names.size())), TypeDesc::FLOAT);
        spec.full_x = -10;
        spec.full_width = 80;
        spec.channelnames = c.names;
        spec.channelformats = c.types;
        spec.tile_width = spec.tile_height = c.tile;
        add_attributes(spec);
        spec.attribute("compression", c.compression);
        std::vector<float> samples(static_cast<std::size_t>(spec.image_pixels()) * c.names.size());
        for (std::size_t n = 0; n < samples.size(); ++n) samples[n] = static_cast<float>(n % 97) / 64.0f;
        const auto theirs = OIIO::ImageOutput::create(file("a.exr"));
        ASSERT_TRUE(theirs->open(file("a.exr"), spec) &&
                    theirs->write_image(TypeDesc::FLOAT, samples.data()) && theirs->close())
            << theirs->geterror();
        const Picture wanted = by_library(file("a.exr"));

        std::string error;
        const auto input = open_exr(file("a.exr"), error);
        ASSERT_NE(input, nullptr) << error;
        const Header& header = input->header();
        Picture found{told(header), std::vector<std::byte>(wanted.pixels.size())};
        ASSERT_TRUE(input->read(header.y, header.y + header.height, 0, header.nchannels, OIIO::TypeUnknown,
                                found.pixels.data()))
            << input->error();
        EXPECT_EQ(found.header, wanted.header) << c.compression;
        EXPECT_EQ(found.pixels, wanted.pixels) << c.compression;

        Header again = header;
        again.erase_attribute("ResolutionUnit");  // follows from XResolution
        again.attribute("compression", c.compression);
        OIIO::Filesystem::IOFile bytes(file("b.exr"), OIIO::Filesystem::IOProxy::Write);
        const auto output = exr_writer();
        output->set_ioproxy(&bytes);
        ASSERT_TRUE(
            output->open(file("b.exr"), std::span(&again, 1)) &&
            output->write(header.y, header.y + header.height, OIIO::TypeUnknown, found.pixels.data()) &&
            output->close())
            << output->error();
        bytes.close();
        const Picture ours = by_library(file("b.exr"));
        EXPECT_EQ(ours.header, wanted.header) << c.compression;
        const bool exact = std::string_view(c.compression) != "dwaa:30";
        EXPECT_TRUE(!exact || ours.pixels == wanted.pixels) << c.compression;
    }
}

// Else the same key made twice would be other bytes.
TEST_F(ExrFile, HoldsNoTimeThatNobodyGaveIt) {
    const Header header(2, 1, 1, TypeDesc::HALF);
    const std::array<std::uint16_t, 2> samples{};
    OIIO::Filesystem::IOFile bytes(file("a.exr"), OIIO::Filesystem::IOProxy::Write);
    const auto output = exr_writer();
    output->set_ioproxy(&bytes);
    ASSERT_TRUE(output->open(file("a.exr"), std::span(&header, 1)));
    ASSERT_TRUE(output->write(0, 1, TypeDesc::HALF, samples.data()) && output->close());
    bytes.close();
    EXPECT_EQ(by_library(file("a.exr")).header.find("DateTime"), std::string::npos);
}

}  // namespace
