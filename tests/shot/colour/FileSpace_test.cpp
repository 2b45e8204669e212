#include "shot/colour/FileSpace.h"

#include "shot/Files.h"
#include "shot/files/EncodingGuess.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

using FileSpaceTest = test::Files;

// A space that is only likely has a question mark.
std::string space_text(const Header& header, const std::string& path) {
    const FileSpace space = space_of(header, path);
    return space.name + (space.sure ? "" : "?");
}

// What is tagged is what a reader finds, in the formats that can say it.
TEST_F(FileSpaceTest, WhatIsWrittenReadsBack) {
    const struct {
        const char* file;
        const char* space;
        const char* read;
        const char* tag;  // that the image library finds
    } cases[] = {
        {"a.exr", "sRGB", "sRGB", "Linear"},
        {"b.exr", "ACEScg", "ACEScg", "Linear"},
        {"a.png", "sRGB", "sRGB", "sRGB"},
        {"b.png", "linear", "linear", "Linear"},
        {"c.png", "LogC3", "LogC3", "LogC3"},
        {"a.dpx", "linear", "linear", "Linear"},
        {"b.dpx", "film-log", "film-log", "KodakLog"},
        {"c.dpx", "Rec.709", "Rec.709", "Rec709"},
        {"a.tif", "sRGB", "sRGB", "sRGB"},
        {"b.tif", "ACEScg", "sRGB?", ""},
        {"a.jpg", "sRGB", "sRGB", "sRGB"},
        {"b.jpg", "linear", "sRGB?", "sRGB"},
        {"a.tga", "sRGB", "sRGB?", ""},
    };
    for (const auto& c : cases) {
        Image image =
            test::image_of({0, 0, 8, 8}, {0, 0, 8, 8}, kMaskRgb, [](Channel, int, int) { return 0.5f; });
        tag_space(image.header, {c.space, "a test", true, true}, known_space(c.space));
        write_image(file(c.file), image, {});
        const Header header = read_image(file(c.file)).header;
        EXPECT_EQ(space_text(header, file(c.file)), c.read) << c.file;
        EXPECT_EQ(header.get_string_attribute("oiio:ColorSpace"), c.tag) << c.file;
    }
    Chromaticities xy{};
    const auto eight = OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 8);
    ASSERT_TRUE(read_image(file("b.exr")).header.getattribute("chromaticities", eight, xy.data()));
    EXPECT_EQ(xy, known_space("ACEScg")->gamut->xy);
}

TEST_F(FileSpaceTest, HeadersTellAsMuchAsTheyAreSureOf) {
    const char *profile = "ICCProfile:profile_description", *tag = "oiio:ColorSpace";
    const struct {
        const char* file;
        OIIO::TypeDesc type;
        const char* attribute;
        const char* value;
        const char* space;
        const char* encoding;  // of the knob unmix_encoding
    } cases[] = {
        {"a.exr", OIIO::TypeHalf, "", "", "linear", "as stored"},
        {"a.exr", OIIO::TypeHalf, tag, "Linear", "linear", "as stored"},
        {"a.tif", OIIO::TypeUInt16, "", "", "sRGB?", "sRGB"},
        {"a.tif", OIIO::TypeFloat, "", "", "linear?", "as stored"},
        {"a.tif", OIIO::TypeUInt8, profile, "sRGB IEC61966-2.1", "sRGB", "sRGB"},
        {"a.png", OIIO::TypeUInt8, "", "", "sRGB?", "sRGB"},
        {"a.png", OIIO::TypeUInt16, tag, "Linear", "linear", "as stored"},
        {"a.JPG", OIIO::TypeUInt8, tag, "sRGB", "sRGB", "sRGB"},
        {"a.jpg", OIIO::TypeUInt8, profile, "Display P3", "Display-P3", "sRGB"},
        {"a.jpg", OIIO::TypeUInt8, profile, "A camera's", "sRGB?", "sRGB"},
        {"a.1001.dpx", OIIO::TypeUInt16, "", "", "film-log?", "logarithmic"},
        {"a.DPX", OIIO::TypeUInt16, tag, "KodakLog", "film-log", "logarithmic"},
        {"a.dpx", OIIO::TypeFloat, tag, "Linear", "linear", "as stored"},
        {"a.dpx", OIIO::TypeUInt8, tag, "Rec709", "Rec.709", "sRGB"},
        {"a.cin", OIIO::TypeUInt16, "", "", "film-log?", "logarithmic"},
        {"noextension", OIIO::TypeUInt8, "", "", "sRGB?", "sRGB"},
    };
    for (const auto& c : cases) {
        Header header(4, 4, 3, c.type);
        if (c.attribute[0] != '\0') header.attribute(c.attribute, c.value);
        EXPECT_EQ(space_text(header, c.file), c.space) << c.file << ' ' << c.value;
        EXPECT_EQ(guess_encoding(header, c.file).name, c.encoding) << c.file << ' ' << c.value;
    }
    Header header(4, 4, 3, OIIO::TypeHalf);
    header.attribute("chromaticities", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 8),
                     known_space("ACES2065-1")->gamut->xy.data());
    EXPECT_EQ(space_text(header, "a.exr"), "ACES2065-1");
}

}  // namespace
