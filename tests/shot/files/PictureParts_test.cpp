// What is read of files with several parts, layers and views.
#include <OpenImageIO/imageio.h>

#include "shot/files/PictureParts.h"

#include "shot/Files.h"
#include "shot/frames/PictureName.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

using PictureParts = test::Files;

struct Part {
    std::vector<std::string> channels;
    std::string name{}, view{};
    std::vector<const char*> views{};
};

// Two pixels wide; the first holds 1 for the first channel of the first part, 2 for the next, and so on.
void write_parts(const std::string& path, const std::vector<Part>& parts) {
    std::vector<OIIO::ImageSpec> specs;
    for (const Part& part : parts) {
        OIIO::ImageSpec spec(2, 1, static_cast<int>(part.channels.size()), OIIO::TypeDesc::HALF);
        spec.channelnames = part.channels;
        if (!part.name.empty()) spec.attribute("oiio:subimagename", part.name);
        if (!part.view.empty()) spec.attribute("view", part.view);
        if (!part.views.empty()) {
            const OIIO::TypeDesc type(OIIO::TypeDesc::STRING, static_cast<int>(part.views.size()));
            spec.attribute("multiView", type, part.views.data());
        }
        specs.push_back(spec);
    }
    const auto output = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(output->open(path, static_cast<int>(specs.size()), specs.data())) << output->geterror();
    float value = 0.0f;
    for (std::size_t n = 0; n < specs.size(); ++n) {
        ASSERT_TRUE(n == 0 || output->open(path, specs[n], OIIO::ImageOutput::AppendSubimage));
        std::vector<float> row(2 * parts[n].channels.size());
        for (std::size_t c = 0; c < parts[n].channels.size(); ++c) row[c] = ++value;
        ASSERT_TRUE(output->write_scanline(0, 0, OIIO::TypeFloat, row.data()));
    }
    ASSERT_TRUE(output->close());
}

TEST_F(PictureParts, TheChoiceSaysWhatIsRead) {
    write_parts(file("layers.exr"), {{{"R", "G", "B", "A", "Z", "a.b.R", "a.b.G", "a.b.B", "d.V"}}});
    write_parts(file("parts.exr"), {{{"R", "G", "B"}, "cam", "left"},
                                    {{"R", "G", "B"}, "cam2", "right"},
                                    {{"depth.Z", "key.A", "key.R"}, "1", "left"}});
    const Part views{
        {"R", "G", "B", "d.left.Z", "d.right.Z", "right.R", "right.G", "right.B"}, "", "", {"left", "right"}};
    write_parts(file("views.exr"), {views});
    write_parts(file("only.exr"), {{{"Z", "beauty.R", "beauty.G", "beauty.B"}}});
    write_parts(file("pages.tif"), {{{"R", "G", "B"}}, {{"R", "G", "B"}}});
    write_parts(file("several.exr"), {{{"a.R", "a.G", "b.R"}}});
    const struct {
        const char* name;
        std::vector<int> rgba;  // the values; 0 for no channel
        int matte;              // of read_matte
        const char* told;
    } cases[] = {
        {"layers.exr", {1, 2, 3, 4}, 4, "layers a.b, d: choose with layers.exr#layer=a.b"},
        {"layers.exr#layer=a.b", {6, 7, 8, 0}, 6, ""},
        {"layers.exr#channel=G,layer=a.b", {7, 7, 7, 0}, 7, ""},
        {"layers.exr#channel=a.b.B", {8, 8, 8, 0}, 8, ""},
        {"layers.exr#channel=R", {1, 1, 1, 0}, 1, ""},
        {"layers.exr#channel=V", {9, 9, 9, 0}, 9, ""},
        {"layers.exr#layer=a.c.b", {}, 0, "has no layer a.c.b; there are a.b, d: layers.exr#layer=a.b"},
        {"layers.exr#channel=d.W", {}, 0, ": layers.exr#channel=d.V"},
        {"parts.exr", {1, 2, 3, 0}, 1, "parts cam, cam2, 1; layers depth, key; views left, right: choose"},
        {"parts.exr#part=1", {9, 9, 9, 8}, 8, ""},  // its name goes before another's number
        {"parts.exr#part=cam2", {4, 5, 6, 0}, 4, ""},
        {"parts.exr#part=0", {1, 2, 3, 0}, 1, ""},
        {"parts.exr#part=3", {}, 0, "has no part 3; there are cam, cam2, 1: parts.exr#part="},
        {"parts.exr#layer=key", {9, 9, 9, 8}, 8, ""},
        {"parts.exr#view=right", {4, 5, 6, 0}, 4, ""},
        {"parts.exr#layer=cam2", {4, 5, 6, 0}, 4, ""},
        {"views.exr", {1, 2, 3, 0}, 1, "layers d; views left, right"},
        {"views.exr#view=right", {6, 7, 8, 0}, 6, ""},
        {"views.exr#layer=d", {4, 4, 4, 0}, 4, "view left alone is read; it has views left, right: "},
        {"views.exr#layer=d,view=right", {5, 5, 5, 0}, 5, ""},
        {"views.exr#layer=d.right", {5, 5, 5, 0}, 5, ""},
        {"only.exr", {2, 3, 4, 0}, 2, ""},
        {"pages.tif#part=1", {4, 5, 6, 0}, 4, ""},
        {"pages.tif#part=2", {}, 0, "has no part 2"},
        {"pages.tif#invert", {}, 0, "#invert: only the matte"},
        {"several.exr", {}, 0, "layers a, b; choose with several.exr#layer=a"},
        {"several.exr#layer=c", {}, 0, "has no layer c; there are a, b: several.exr#layer=a"},
        {"several.exr#view=c", {}, 0, "has no view c, nor a name of any view"},
        {"several.exr#channel=R", {}, 0, "has several channels R: a.R, b.R; "},
        {"several.exr#channel=b.G", {}, 0, "has no channel b.G; there are a.R, a.G, b.R"}};
    for (const auto& c : cases) {
        const PictureName name(file(c.name));
        std::vector<int> found;
        std::string warned;
        std::string told = test::told_by([&] {
            const Image image = read_image(name.at(0), name.choice());
            for (const Channel channel : kMaskRgba) {
                found.push_back(image.has(channel) ? static_cast<int>(image.line(channel, 0)[0]) : 0);
            }
            EXPECT_EQ(read_matte(name.at(0), name.choice()).line(kAlpha, 0)[0], c.matte) << c.name;
            Caller caller;
            caller.warn = [&](const std::string& line) { warned += line; };
            warn_of_parts(name.at(0), name.choice(), false, caller);
        });
        told += warned;
        EXPECT_EQ(found, c.rgba) << c.name << told;
        const std::string folder = folder_.string() + '/';
        for (std::size_t at; (at = told.find(folder)) != told.npos;) told.erase(at, folder.size());
        EXPECT_THAT(told, testing::HasSubstr(c.told)) << c.name;
        EXPECT_EQ(told.empty(), *c.told == 0) << c.name << told;
    }
    EXPECT_EQ(read_matte(file("pages.tif"), {.channel = "B", .invert = true}).line(kAlpha, 0)[0], -2.0f);
}

}  // namespace
