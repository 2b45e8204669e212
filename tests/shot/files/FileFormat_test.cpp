// What files are asked to be: compression, quality, tiles, bits, and what their alpha means.
#include <OpenImageIO/imagebuf.h>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

using FileFormat = test::Files;

Image slope() {
    return test::image_of({0, 0, 70, 40}, {0, 0, 70, 40}, kMaskRgba, [](Channel c, int x, int y) {
        return static_cast<float>((x * 7 + y * 13 + c * 29) % 256) / 255.0f;
    });
}

TEST_F(FileFormat, IsWhatWasAskedFor) {
    const struct {
        const char* name;
        WriteOptions options;
        const char* attribute;
        const char* value;
    } cases[] = {
        {"a.exr", {.compression = "piz"}, "compression", "piz"},
        {"b.exr", {.compression = "dwaa:120"}, "openexr:dwaCompressionLevel", "120"},
        {"c.exr", {}, "compression", "zips"},
        {"d.tif", {}, "compression", "zip"},
        {"e.tif", {.compression = "lzw"}, "compression", "lzw"},
        {"f.tga", {.compression = "none"}, "compression", ""},
        {"g.exr", {.tile_width = 32, .tile_height = 16}, "tiles", "32x16"},
        {"h.tif", {.tile_width = 32, .tile_height = 16}, "tiles", "32x16"},
        {"i.dpx", {.depth = Depth::UINT16, .bits = 10, .alpha = Alpha::kOpaque}, "oiio:BitsPerSample", "10"},
        {"j.tif", {.depth = Depth::UINT16, .bits = 12}, "oiio:BitsPerSample", "12"},
    };
    Image image = slope();
    image.header.attribute("compression", "zips");
    for (const auto& c : cases) {
        write_image(file(c.name), image, c.options);
        OIIO::ImageSpec spec = OIIO::ImageBuf(file(c.name)).spec();
        spec.attribute("tiles", size_text(spec.tile_width, spec.tile_height));
        EXPECT_EQ(spec.extra_attribs.get_string(c.attribute), c.value) << c.name;
    }
    const Image ten = read_image(file("i.dpx"));
    for (std::size_t n = 0; n < 70; ++n) {
        EXPECT_NEAR(ten.plane(kRed)[n], image.plane(kRed)[n], 0.5 / 1023 * 1.01) << "rounded, not cut";
    }
    for (const char* name : {"k.jpg", "k.webp"}) {
        write_image(file(name), image, {.quality = 10});
        const auto small = std::filesystem::file_size(file(name));
        write_image(file(name), image, {.quality = 95, .overwrite = true});
        EXPECT_LT(small * 3, std::filesystem::file_size(file(name)) * 2) << name;
    }
}

TEST_F(FileFormat, WhatItLacksIsSaidBeforeAFrameIsKeyed) {
    const std::pair<const char*, WriteOptions> cases[] = {
        {"a.exr", {.compression = "lzw"}},
        {"a.exr", {.compression = "piz:3"}},
        {"a.exr", {.compression = "dwaa:"}},
        {"a.jpg", {.compression = "zip"}},
        {"a.exr", {.quality = 50}},
        {"a.png", {.tile_width = 16, .tile_height = 16}},
        {"a.png", {.bits = 10}},
        {"a.tif", {.tile_width = 20, .tile_height = 16}},
    };
    for (const auto& [name, options] : cases) {
        EXPECT_THROW(check_writable(file(name), options), Error) << name << options.compression;
    }
}

// PNG keeps alpha apart from colour and leaves out one that it does not need; OpenEXR does not.
TEST_F(FileFormat, AlphaIsWhatTheFormatTakesItFor) {
    Image image = test::image_of({0, 0, 3, 1}, {0, 0, 3, 1}, kMaskRgba, [](Channel c, int x, int) {
        const float alpha[] = {0.0f, 0.5f, 1.0f};
        return c == kAlpha ? alpha[x] : 0.25f;
    });
    using Values = std::vector<float>;
    const struct {
        Alpha alpha;
        const char* name;
        Values red;
        int channels;
    } cases[] = {{Alpha::kAsStored, "a.png", {0.25f, 0.25f, 0.25f}, 4},
                 {Alpha::kOpaque, "b.png", {0.25f, 0.25f, 0.25f}, 3},
                 {Alpha::kPremultiplied, "c.png", {0.0f, 0.5f, 0.25f}, 4},
                 {Alpha::kStraight, "d.png", {0.25f, 0.25f, 0.25f}, 4},
                 {Alpha::kOpaque, "e.exr", {0.25f, 0.25f, 0.25f}, 4},
                 {Alpha::kPremultiplied, "f.tif", {0.25f, 0.25f, 0.25f}, 4}};
    for (const auto& c : cases) {
        write_image(file(c.name), image, {.alpha = c.alpha});
        const Image back = read_image(file(c.name));
        EXPECT_EQ(back.header.nchannels, c.channels) << c.name;
        EXPECT_THAT(Values(back.line(kRed, 0), back.line(kRed, 0) + 3),
                    testing::Pointwise(testing::FloatNear(1e-4f), c.red))
            << c.name;
    }
}

}  // namespace
