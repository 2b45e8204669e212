#include "shot/colour/FileSpace.h"

#include <gtest/gtest.h>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

using FileSpaceTest = test::Files;

std::string read_space(const std::string& path) {
    const FileSpace space = space_of(read_image(path).header, path);
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
        EXPECT_EQ(read_space(file(c.file)), c.read) << c.file;
        EXPECT_EQ(read_image(file(c.file)).header.get_string_attribute("oiio:ColorSpace"), c.tag) << c.file;
    }
    Chromaticities xy{};
    const auto eight = OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 8);
    ASSERT_TRUE(read_image(file("b.exr")).header.getattribute("chromaticities", eight, xy.data()));
    EXPECT_EQ(xy, known_space("ACEScg")->gamut->xy);
}

TEST_F(FileSpaceTest, HeadersTellAsMuchAsTheyAreSureOf) {
    const Chromaticities aces = known_space("ACES2065-1")->gamut->xy;
    const struct {
        const char* file;
        OIIO::TypeDesc type;
        const char* profile;
        const Chromaticities* xy;
        const char* space;
        bool sure;
    } cases[] = {
        {"a.exr", OIIO::TypeHalf, "", nullptr, "linear", true},
        {"a.exr", OIIO::TypeHalf, "", &aces, "ACES2065-1", true},
        {"a.tif", OIIO::TypeUInt16, "", nullptr, "sRGB", false},
        {"a.tif", OIIO::TypeFloat, "", nullptr, "linear", false},
        {"a.tif", OIIO::TypeUInt8, "sRGB IEC61966-2.1", nullptr, "sRGB", true},
        {"a.jpg", OIIO::TypeUInt8, "Display P3", nullptr, "Display-P3", true},
        {"a.jpg", OIIO::TypeUInt8, "A camera's", nullptr, "sRGB", false},
        {"a.dpx", OIIO::TypeUInt16, "", nullptr, "film-log", false},
    };
    for (const auto& c : cases) {
        OIIO::ImageSpec header(4, 4, 3, c.type);
        if (c.profile[0] != '\0') header.attribute("ICCProfile:profile_description", c.profile);
        if (c.xy) header.attribute("chromaticities", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 8), c.xy->data());
        const FileSpace space = space_of(header, c.file);
        EXPECT_EQ(space.name, c.space) << c.file << ' ' << space.why;
        EXPECT_EQ(space.sure, c.sure) << c.file << ' ' << space.why;
    }
}

}  // namespace
