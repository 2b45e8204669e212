// What passes from a foreground's file into that of the result.
#include "shot/files/KeptLayers.h"

#include <OpenImageIO/imageio.h>
#include <numeric>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;
using OIIO::ImageSpec;

namespace {

using KeptLayersTest = test::Files;

// Three channels to key, a half, a float and a whole number beside them; another part with a smaller window.
void write_source(const std::string& path) {
    ImageSpec first(4, 3, 6, OIIO::TypeDesc::FLOAT);
    first.channelnames = {"R", "G", "B", "a.X", "depth.Z", "id.I"};
    first.channelformats.assign(6, OIIO::TypeHalf);
    first.channelformats[4] = OIIO::TypeFloat;
    first.channelformats[5] = OIIO::TypeUInt32;
    first.attribute("oiio:subimagename", "main");
    ImageSpec second(2, 1, 2, OIIO::TypeDesc::UINT32);
    second.channelnames = {"B", "id.J"};
    second.x = second.y = 1;
    second.full_width = 4;
    second.full_height = 3;
    second.attribute("oiio:subimagename", "ids");
    second.attribute("note", "kept");
    const ImageSpec specs[] = {first, second};
    const auto output = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(output->open(path, 2, specs)) << output->geterror();
    std::vector<unsigned char> bytes(first.image_bytes(true));
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
    ASSERT_TRUE(output->write_scanlines(0, 3, 0, OIIO::TypeUnknown, bytes.data()));
    ASSERT_TRUE(output->open(path, second, OIIO::ImageOutput::AppendSubimage));
    ASSERT_TRUE(output->write_scanlines(1, 2, 0, OIIO::TypeUnknown, bytes.data()));
    ASSERT_TRUE(output->close());
}

// Windows, type and bytes of a channel, and a note in its part.
std::string channel_in(const std::string& path, int part, const std::string& name) {
    const auto input = OIIO::ImageInput::open(path);
    if (!input->seek_subimage(part, 0)) return "no part";
    const ImageSpec& spec = input->spec();
    const int n = spec.channelindex(name);
    if (n < 0) return "no channel";
    std::string bytes(spec.channelformat(n).size() * spec.image_pixels(), ' ');
    EXPECT_TRUE(input->read_image(part, 0, n, n + 1, OIIO::TypeUnknown, bytes.data()));
    return std::to_string(spec.x) + ' ' + std::to_string(spec.y) + ' ' + spec.channelformat(n).c_str() + ' ' +
           std::string(spec.get_string_attribute("note")) + bytes;
}

TEST_F(KeptLayersTest, ComeOutAsTheyWentIn) {
    write_source(file("in.exr"));
    const struct {
        PictureChoice choice;
        Box box;  // of the result
        const char* compression;
        int tiles;
        int part;  // that the kept channels of the first are in
        std::vector<std::string> kept;
    } cases[] = {{{}, {0, 0, 4, 3}, "zip", 0, 0, {"a.X", "depth.Z", "id.I"}},
                 {{}, {0, 0, 4, 3}, "zips", 16, 0, {"a.X", "depth.Z", "id.I"}},
                 {{}, {-1, 0, 4, 3}, "zip", 0, 1, {"a.X", "depth.Z", "id.I"}},
                 {{}, {0, 0, 4, 3}, "dwaa", 0, 1, {"a.X", "depth.Z", "id.I"}},
                 {{.layer = "a"}, {0, 0, 4, 3}, "zip", 0, 1, {"R", "G", "B", "depth.Z", "id.I"}}};
    for (const auto& c : cases) {
        const std::string which = c.choice.layer + size_text(c.box) + c.compression;
        Image image = test::image_of(c.box, {0, 0, 4, 3}, kMaskRgba, [](Channel channel, int x, int y) {
            return static_cast<float>(x + 10 * y + 100 * channel);
        });
        image.kept = std::make_shared<const KeptLayers>(read_kept_layers(file("in.exr"), c.choice, nullptr));
        WriteOptions how{.depth = Depth::FLOAT, .compression = c.compression, .overwrite = true};
        how.tile_width = how.tile_height = c.tiles;
        EXPECT_THAT(image.kept->left_out, testing::IsEmpty());
        ASSERT_EQ(write_image(file("out.exr"), image, how), "") << which;
        for (const std::string& name : c.kept) {
            EXPECT_EQ(channel_in(file("out.exr"), c.part, name), channel_in(file("in.exr"), 0, name))
                << which;
        }
        for (const char* name : {"B", "id.J"}) {
            EXPECT_EQ(channel_in(file("out.exr"), c.part + 1, name), channel_in(file("in.exr"), 1, name));
        }
        const Image back = read_image(file("out.exr"));
        EXPECT_EQ(back.info.box, c.box) << which;
        EXPECT_EQ(back.line(kAlpha, 1)[0], image.line(kAlpha, 1)[0]) << which;
        EXPECT_TRUE(is_whole_image(file("out.exr")));
    }
    cut(file("out.exr"), 0.97);
    EXPECT_FALSE(is_whole_image(file("out.exr"))) << "its last part is cut off";
}

}  // namespace
