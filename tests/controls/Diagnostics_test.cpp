// The listing and the trace. The texts in data/ were put together from the tables of defaults and of
// commands, not printed by this code; they have bars for line ends and are broken anywhere behind one.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <numeric>

#include "controls/ControlListing.h"
#include "controls/ControlTrace.h"
#include "keyer/VeloxaKeyer.h"

namespace {

std::string file_text(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string data(const char* name) {
    std::string text = file_text(std::filesystem::path(DATA_DIR) / name);
    std::erase(text, '\n');
    std::replace(text.begin(), text.end(), '|', '\n');
    return text;
}

const std::string kListing = data("fresh_listing.txt");
const std::string kTrace = data("fresh_trace.txt");

struct Block {
    std::array<std::int32_t, ControlBlock::kCount> values{};
    ControlBlock controls{values.data(), 1};
};

TEST(ControlListing, ByteForByteAsStored) {
    Block block;
    EXPECT_EQ(control_listing(block.controls), kListing);
    EXPECT_EQ(std::count(kListing.begin(), kListing.end(), '\n'), 250);
    const std::string path = testing::TempDir() + "/listing.txt";
    std::ofstream(path) << std::string(10'000, 'x');
    EXPECT_EQ(list_controls(block.controls, path.c_str()), 0);
    EXPECT_EQ(file_text(path), kListing);
    EXPECT_EQ(list_controls(block.controls, (path + "/nowhere").c_str()), std::nullopt);

    block.controls.set(80, 7);
    block.values[249] = std::numeric_limits<std::int32_t>::min();
    const std::string text = control_listing(block.controls);
    EXPECT_NE(text.find("\n-7\tMatte Density Darks \n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\n-2147483648\tCropBottomPer10K\n"));
}

TEST(ControlTrace, FreshBlockBehindTheTextThatIsThere) {
    const Block block;
    std::string buffer = "before\n" + std::string(trace_capacity(), '\0');
    write_trace(block.controls, buffer.data());
    EXPECT_EQ(std::string(buffer.c_str()), "before\n" + kTrace);
}

// Every control holds its own index, so that a line with a wrong control or in a wrong order shows.
TEST(ControlTrace, NegatesTheFiveDarksAndHoldsTheLongestValues) {
    Block block;
    std::iota(block.values.begin(), block.values.end(), 0);
    std::string buffer(trace_capacity(), '\0');
    write_trace(block.controls, buffer.data());
    for (const char* const line :
         {"setOuterBlackGloss -30\n", "setOuterBlackGloss2 -32\n", "setInnerBlackGloss -5\n",
          "setClassicBlackGloss -73\n", "setBlackGloss -80\n", "setCorrection 13 12 11\n",
          "setMonoGloss 46 48 51\n", "setBlack 202 207 212\n", "setClassicGate1 49\n", "setGate1 106\n"}) {
        EXPECT_NE(buffer.find("\n" + std::string(line)), std::string::npos) << line;
    }
    block.values.fill(std::numeric_limits<std::int32_t>::min());
    buffer.assign(trace_capacity(), '\0');
    EXPECT_TRUE(write_trace(block.controls, buffer.data(), buffer.size()));
    EXPECT_NE(buffer.find("setVeiling -2147483648 -2147483648 -2147483648\n"), std::string::npos);
}

TEST(ControlTrace, BoundedWriterCutsAtAWholeLine) {
    const Block block;
    const std::string before = "ab";
    for (std::size_t size = 0; size <= before.size() + kTrace.size() + 2; ++size) {
        std::string buffer(size + 8, '~');
        buffer.replace(0, 3, "ab\0", 3);
        const std::string beyond = buffer.substr(size);
        const bool whole = write_trace(block.controls, buffer.data(), size);
        EXPECT_EQ(whole, size > before.size() + kTrace.size()) << size;
        EXPECT_EQ(buffer.substr(size), beyond) << size;
        if (size <= before.size()) continue;  // no NUL within it
        const std::size_t room = std::min(size - before.size() - 1, kTrace.size());
        const std::size_t cut = room == 0 ? 0 : kTrace.rfind('\n', room - 1) + 1;  // npos + 1 is 0
        EXPECT_EQ(std::string(buffer.c_str()), before + kTrace.substr(0, cut)) << size;
    }
    char full[3] = {'x', 'y', 'z'};
    EXPECT_FALSE(write_trace(block.controls, full, 3));
    EXPECT_EQ(std::string(full, 3), "xyz");
}

TEST(Diagnostic, NodeAnswersWithItsControls) {
    VeloxaKeyer node{Zo::Image::NodeContext{}};
    EXPECT_EQ(node.diagnostic("controls"), kListing);
    EXPECT_EQ(node.diagnostic("trace"), kTrace);
    EXPECT_EQ(node.diagnostic("nothing"), "");
    node.knob_values().brights = 150.0f;
    node.validate(true);
    EXPECT_NE(node.diagnostic("trace").find("\nsetMatteDensity 150\n"), std::string::npos);
    EXPECT_EQ(node.Op::diagnostic("controls"), "");
}

}  // namespace
