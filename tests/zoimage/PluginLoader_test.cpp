#include "ZoImage/PluginLoader.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "ZoImage/KnobPanel.h"
#include "ZoImage/Script.h"
#include "support/TestImages.h"

using namespace Zo::Image;
using testing::HasSubstr;
using testing::ThrowsMessage;

namespace fs = std::filesystem;

TEST(PluginLoader, SaysWhereItLookedAndWhatIsWrong) {
    const fs::path root = fs::path(testing::TempDir()) / ("plugin_loader_test." + std::to_string(getpid()));
    const std::string first = root / "first", second = root / "second";
    fs::create_directories(first);
    fs::create_directories(second);
    setenv("VELOXA_PLUGIN_PATH", (first + "::" + second).c_str(), 1);
    std::ofstream(second + "/Broken.so") << "this is no module";
    fs::copy_file(EXAMPLE_MODULE_DIR "/Sharpen.so", first + "/Blunt.so");
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"Nowhere", {"'Nowhere': no Nowhere.so in " + first + ", " + second + ", ", "/lib/veloxa"}},
        {"Broken", {second + "/Broken.so: ", "file too short", "looked at " + first + ", " + second + ")"}},
        {"Blunt", {"Blunt.so registers no operator 'Blunt'"}},
        // A name leads nowhere else.
        {"", {"that is no class name"}},
        {"../second/Broken", {"that is no class name"}},
        {"a b", {"that is no class name"}}};
    for (const auto& [name, texts] : cases) {
        for (const std::string& text : texts) {
            EXPECT_THAT([n = name] { load_plugin(n); }, ThrowsMessage<PluginError>(HasSubstr(text)));
        }
    }
    unsetenv("VELOXA_PLUGIN_PATH");
    fs::remove_all(root);
}

// A node that knows the engine by its public headers only.
TEST(PluginLoader, AForeignNodeLoadsRendersAndFollowsItsKnob) {
    ASSERT_EQ(setenv("VELOXA_PLUGIN_PATH", EXAMPLE_MODULE_DIR, 1), 0);
    const Op::Description& description = load_plugin("Sharpen");
    EXPECT_STREQ(description.menu_path(), "Filter/Sharpen");
    const std::unique_ptr<Op> op(description.construct(NodeContext{"Sharpen1"}));
    test::FunctionSource source({0, 0, 5, 4}, kMaskRgba,
                                [](Channel, int x, int y) { return static_cast<float>(x + y * y); });
    op->set_input(0, &source);
    KnobPanel panel(*op);

    // Second differences of y * y are 2; the bottom row repeats below itself.
    test::Picture picture = test::render(*op->as_iop(), 2);
    EXPECT_EQ(picture.at(kRed, 3, 2), 3 + 4 - 1.0f);
    EXPECT_EQ(picture.at(kBlue, 3, 0), 3 - 0.5f);
    EXPECT_EQ(picture.at(kAlpha, 3, 2), 7.0f);

    apply_script(panel, read_script("Sharpen {\n amount 0\n}\n", "test").at(0), "test");
    picture = test::render(*op->as_iop());
    EXPECT_EQ(picture.at(kRed, 3, 2), 7.0f);
    EXPECT_EQ(write_script(panel), "Sharpen {\n    amount 0\n}\n");
}

TEST(Description, TheLatestOfANameCountsUntilItLeaves) {
    const auto nothing = [](const NodeContext&) -> Op* { return nullptr; };
    EXPECT_EQ(Op::Description::find("Twice"), nullptr);
    const Op::Description first("Twice", "A/Twice", nothing);
    {
        const Op::Description second("Twice", "B/Twice", nothing);
        EXPECT_EQ(Op::Description::find("Twice"), &second);
    }
    EXPECT_EQ(Op::Description::find("Twice"), &first);
}
