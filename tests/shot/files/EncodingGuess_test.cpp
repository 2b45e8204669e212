#include "shot/files/EncodingGuess.h"

#include <gtest/gtest.h>

namespace {

TEST(EncodingGuess, GoesByTypeTagAndExtension) {
    const struct {
        const char* file;
        OIIO::TypeDesc type;
        const char* space;
        const char* encoding;
    } cases[] = {
        {"a.png", OIIO::TypeUInt8, "", "sRGB"},
        {"a.JPG", OIIO::TypeUInt8, "sRGB", "sRGB"},
        {"a.tif", OIIO::TypeUInt16, "", "sRGB"},
        {"a.png", OIIO::TypeUInt16, "Linear", "as stored"},
        {"a.tif", OIIO::TypeFloat, "", "as stored"},
        {"a.exr", OIIO::TypeHalf, "Linear", "as stored"},
        {"a.1001.dpx", OIIO::TypeUInt16, "", "logarithmic"},
        {"a.DPX", OIIO::TypeUInt16, "KodakLog", "logarithmic"},
        {"a.dpx", OIIO::TypeFloat, "Linear", "as stored"},
        {"a.dpx", OIIO::TypeUInt8, "Rec709", "sRGB"},
        {"a.cin", OIIO::TypeUInt16, "", "logarithmic"},
        {"noextension", OIIO::TypeUInt8, "", "sRGB"},
    };
    for (const auto& c : cases) {
        OIIO::ImageSpec header(4, 4, 3, c.type);
        if (c.space[0] != '\0') header.attribute("oiio:ColorSpace", c.space);
        EXPECT_EQ(veloxa::guess_encoding(header, c.file).name, c.encoding) << c.file << ' ' << c.space;
    }
}

}  // namespace
