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

class PluginLoader : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(first_);
        fs::create_directories(second_);
        setenv("VELOXA_PLUGIN_PATH", (first_.string() + "::" + second_.string()).c_str(), 1);
    }
    void TearDown() override {
        unsetenv("VELOXA_PLUGIN_PATH");
        fs::remove_all(root_);
    }

    static std::string refusal(const char* class_name) {
        try {
            load_plugin(class_name);
        } catch (const PluginError& error) {
            return error.what();
        }
        return "loaded";
    }

    fs::path root_ = fs::path(testing::TempDir()) / ("plugin_loader_test." + std::to_string(getpid()));
    fs::path first_ = root_ / "first";
    fs::path second_ = root_ / "second";
};

TEST_F(PluginLoader, NamesEveryPlaceThatItLookedAt) {
    const std::string text = refusal("Nowhere");
    EXPECT_THAT(text,
                HasSubstr("'Nowhere': no Nowhere.so in " + first_.string() + ", " + second_.string() + ", "));
    EXPECT_THAT(text, HasSubstr("/lib/veloxa"));
}

TEST_F(PluginLoader, ABadFileGivesItsReason) {
    std::ofstream(second_ / "Broken.so") << "this is no module";
    const std::string text = refusal("Broken");
    EXPECT_THAT(text, HasSubstr((second_ / "Broken.so").string() + ": "));
    EXPECT_THAT(text, HasSubstr("file too short"));
    EXPECT_THAT(text, HasSubstr("looked at " + first_.string() + ", " + second_.string() + ")"));
}

TEST_F(PluginLoader, AModuleMustRegisterItsClass) {
    fs::copy_file(fs::path(EXAMPLE_MODULE_DIR) / "Sharpen.so", first_ / "Blunt.so");
    EXPECT_THAT(refusal("Blunt"), HasSubstr("Blunt.so registers no operator 'Blunt'"));
}

TEST_F(PluginLoader, ANameLeadsNowhereElse) {
    for (const char* const name : {"", "../second/Broken", "a b"}) {
        EXPECT_THAT(refusal(name), HasSubstr("that is no class name")) << name;
    }
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
