#include "ZoImage/PluginLoader.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace Zo::Image;
using testing::HasSubstr;

namespace {

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
        try {
            load_plugin(name);
            ADD_FAILURE() << name << " was loaded";
        } catch (const PluginError& error) {
            for (const std::string& text : texts) EXPECT_THAT(error.what(), HasSubstr(text));
        }
    }
    unsetenv("VELOXA_PLUGIN_PATH");
    fs::remove_all(root);
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

}  // namespace
