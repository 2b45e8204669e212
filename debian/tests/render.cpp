// Renders the example operator over an image whose second differences along columns are 2.
#include <cstdio>
#include <memory>

#include "ZoImage/PluginLoader.h"
#include "support/TestImages.h"

using namespace Zo::Image;

int main() {
    const std::unique_ptr<Op> op(load_plugin("Sharpen").construct(NodeContext{"Sharpen1"}));
    test::FunctionSource source({0, 0, 5, 4}, kMaskRgba,
                                [](Channel, int x, int y) { return static_cast<float>(x + y * y); });
    op->set_input(0, &source);
    test::Picture picture = test::render(*op->as_iop(), 2);
    const float sharpened = picture.at(kRed, 3, 2), alpha = picture.at(kAlpha, 3, 2);
    std::printf("red %g, alpha %g\n", sharpened, alpha);
    return sharpened == 6.0f && alpha == 7.0f ? 0 : 1;
}
