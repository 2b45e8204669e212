// A node from a module that knows the engine by its public headers only: loaded, set up, rendered.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "ZoImage/KnobPanel.h"
#include "ZoImage/PluginLoader.h"
#include "ZoImage/Script.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

TEST(SecondNode, LoadsRendersAndFollowsItsKnob) {
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

}  // namespace
