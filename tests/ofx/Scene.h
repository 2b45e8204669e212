// A small plate for the five clips, and the picture that the node itself makes of it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ZoImage/KnobPanel.h"
#include "keyer/VeloxaKeyer.h"
#include "ofx/host/Host.h"
#include "support/TestImages.h"

namespace ofxtest {

// Knobs and parameters by name; menus by index.
using Settings = std::map<std::string, std::vector<double>>;
using Clips = std::map<std::string, Source>;
// "name value value, name value" with a screen colour.
Settings look(const std::string& text);

// Off the origin and odd in size.
inline constexpr OfxRectI kFrame{-7, 3, 64, 44};
// Plain backing, and a patch of it in half light.
inline constexpr OfxRectI kBacking{-4, 6, 8, 16};
inline constexpr OfxRectI kShade{12, 6, 24, 16};
inline const std::vector<double> kScreen{0.15, 0.6, 0.2};

inline bool inside(const OfxRectI& box, int x, int y) {
    return x >= box.x1 && x < box.x2 && y >= box.y1 && y < box.y2;
}

// fg, cp, bg, gm, hm of float RGBA; channels are 0 to 3.
Clips all_clips();
// fg and bg alone.
Clips two_clips();
OfxRectI scaled_box(const OfxRectI& box, double scale);
// Every picture as `wanted` makes it of the one that is there.
using Pixel = decltype(Source::pixel);
Clips changed(Clips clips, const std::function<Pixel(const Pixel&)>& wanted);

// The keyer node over the same pictures, each channel quantised as its clip is.
class Reference {
  public:
    Reference(const Clips& clips, const Settings& settings, double time = 0.0, double scale = 1.0);
    Frame render();

    VeloxaKeyer node;
    Zo::Image::KnobPanel panel;

  private:
    std::vector<std::unique_ptr<test::FunctionSource>> sources_;
};

// The decimal of the fewest digits that is read as the same float.
double shortest(double value);

// How many values differ in their bits; sizes too.
int differences(const Frame& a, const Frame& b);

// A host with the plug-in loaded, and every rule kept at the end: images released, nothing held, no messages
// but those that a test took.
class OfxTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    Host& host(HostOptions options = {});
    std::unique_ptr<Instance> instance(const Clips& clips, const Settings& settings,
                                       const std::string& context = kOfxImageEffectContextGeneral,
                                       const Host::Values& saved = {});

    std::unique_ptr<Host> host_;
};

}  // namespace ofxtest
