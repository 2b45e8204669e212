// A small plate for the five clips, and the picture that the node itself makes of it.
#pragma once

#include <gtest/gtest.h>

#include <sstream>

#include "ZoImage/KnobPanel.h"
#include "keyer/VeloxaKeyer.h"
#include "ofx/host/Host.h"
#include "support/TestImages.h"

namespace ofxtest {

// Knobs and parameters by name; menus by index.
using Settings = std::map<std::string, std::vector<double>>;
using Clips = std::map<std::string, Source>;

// Off the origin and odd in size.
inline constexpr OfxRectI kFrame{-7, 3, 64, 44};
// Plain backing, and a patch of it in half light.
inline constexpr OfxRectI kBacking{-4, 6, 8, 16};
inline constexpr OfxRectI kShade{12, 6, 24, 16};
inline const std::vector<double> kScreen{0.15, 0.6, 0.2};

// "name value value, name value" with a screen colour.
inline Settings look(const std::string& text) {
    Settings settings{{"screen_color", kScreen}};
    std::istringstream items(text);
    for (std::string item, name; std::getline(items, item, ',');) {
        std::istringstream words(item);
        words >> name;
        for (double value; words >> value;) settings[name].push_back(value);
    }
    return settings;
}

inline bool inside(const OfxRectI& box, int x, int y) {
    return x >= box.x1 && x < box.x2 && y >= box.y1 && y < box.y2;
}

// In half light on a part of it.
inline float backing(double /*time*/, int c, int x, int y) {
    const float colour[] = {0.15f, 0.6f, 0.2f, 1.0f};
    return (inside(kShade, x, y) ? 0.5f : 1.0f) * colour[c];
}

// Backing with grain, a figure that moves a pixel a frame, its edge soft.
inline float foreground(double time, int c, int x, int y) {
    if (c == 3) return 0.5f + 0.01f * static_cast<float>((x + y) % 7);
    const float figure[] = {0.55f, 0.42f, 0.35f};
    const float grain = 0.004f * static_cast<float>((x * 7 + y * 13 + c * 5) % 5 - 2);
    const double dx = x - 34 - time, dy = y - 24;
    const float cover = std::clamp(1.6f - 0.12f * static_cast<float>(std::hypot(dx, dy)), 0.0f, 1.0f);
    return backing(time, c, x, y) * (1.0f - cover) + figure[c] * cover + grain;
}

// fg and bg alone, of float RGBA; channels are 0 to 3.
inline Clips two_clips() {
    Clips clips;
    clips["fg"].pixel = foreground;
    clips["bg"].pixel = [](double, int c, int x, int y) {
        return 0.1f + 0.2f * static_cast<float>(c) + 0.003f * static_cast<float>(x + 2 * y);
    };
    for (auto& [name, source] : clips) source.box = kFrame;
    return clips;
}

// With cp, gm and hm.
inline Clips all_clips() {
    Clips clips = two_clips();
    clips["cp"].pixel = backing;
    clips["gm"].pixel = [](double, int c, int x, int) {
        return c != 3 ? 0.25f : std::clamp(0.2f * static_cast<float>(x - 50), 0.0f, 1.0f);
    };
    clips["hm"].pixel = [](double, int c, int, int y) {
        return c != 3 ? 0.75f : std::clamp(0.25f * static_cast<float>(y - 36), 0.0f, 1.0f);
    };
    for (auto& [name, source] : clips) source.box = kFrame;
    return clips;
}

inline OfxRectI scaled_box(const OfxRectI& b, double scale) {
    return pixels_of(canonical_of(b, 1.0, 1.0), scale);
}

// The keyer node over the same pictures, each channel quantised as its clip is.
class Reference {
  public:
    Reference(const Clips& clips, const Settings& settings, double time = 0.0, double scale = 1.0)
        : node(Zo::Image::NodeContext{}), panel(node) {
        using namespace Zo::Image;
        for (std::size_t n = 0; n < kInputs.size(); ++n) {
            const auto found = clips.find(kInputs[n]);
            if (found == clips.end()) continue;
            const Source& source = found->second;
            const OfxRectI b = scaled_box(source.box, scale);
            const bool rgb = source.components == kOfxImageComponentRGB;
            const bool matte = n >= 3;
            const auto pixel = [source, time, rgb, matte](Channel c, int x, int y) {
                if (rgb && c == kAlpha && !matte) return 0.0f;
                const int component = rgb && matte ? 0 : static_cast<int>(c) - 1;
                return kept(source.pixel(time, component, x, y), source.depth);
            };
            sources_.push_back(std::make_unique<test::FunctionSource>(
                Box{b.x1, b.y1, b.x2, b.y2}, rgb && !matte ? kMaskRgb : kMaskRgba, pixel));
            node.set_input(static_cast<int>(n), sources_.back().get());
        }
        for (const auto& [name, values] : settings) {
            Knob& knob = panel.get(name);
            for (std::size_t i = 0; i < values.size(); ++i) knob.set_value(values[i], static_cast<int>(i));
            knob.changed();
        }
        node.invalidate();
    }
    Frame render() { return rows_of(node); }
    // Of one of its operators, over the node's frame.
    Frame rows_of(Zo::Image::Iop& op) {
        node.validate(true);
        const test::Picture picture = test::render(op, node.info().box);
        Frame frame({picture.box.x, picture.box.y, picture.box.r, picture.box.t});
        for (std::size_t i = 0; i < frame.values.size() / 4; ++i) {
            for (std::size_t c = 0; c < 4; ++c) frame.values[4 * i + c] = picture.planes[c + 1][i];
        }
        return frame;
    }

    VeloxaKeyer node;
    Zo::Image::KnobPanel panel;

  private:
    static constexpr std::array<const char*, 5> kInputs{"fg", "cp", "bg", "gm", "hm"};

    std::vector<std::unique_ptr<test::FunctionSource>> sources_;
};

// How many values differ in their bits; sizes too.
inline int differences(const Frame& a, const Frame& b) {
    if (a.values.size() != b.values.size() || std::memcmp(&a.box, &b.box, sizeof a.box) != 0) return -1;
    int count = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        count += std::memcmp(&a.values[i], &b.values[i], sizeof(float)) != 0 ? 1 : 0;
    return count;
}

// A host with the plug-in loaded, and every rule kept at the end: images released, nothing held, no messages
// but those that a test took.
class OfxTest : public testing::Test {
  protected:
    void SetUp() override { services = {}; }
    void TearDown() override {
        host_.reset();
        EXPECT_EQ(faults.take(), std::vector<std::string>());
        EXPECT_EQ(Image::held, 0);
        EXPECT_EQ(shown.take(), std::vector<std::string>());
    }

    Host& host(HostOptions options = {}) {
        host_.reset();
        host_ = std::make_unique<Host>(std::move(options));
        if (host_->load() != kOfxStatOK) throw std::runtime_error("the plug-in does not load");
        return *host_;
    }

    std::unique_ptr<Instance> instance(const Clips& clips, const Settings& settings,
                                       const std::string& context = kOfxImageEffectContextGeneral,
                                       const Instance::Values& saved = {}) {
        if (!host_) host();
        auto made = std::make_unique<Instance>(*host_, context, host_->descriptor(context));
        made->create(saved);
        for (const auto& [name, source] : clips) {
            const bool filter = context == kOfxImageEffectContextFilter;
            if (!filter || name == "fg") made->connect(filter ? "Source" : name, &source);
        }
        Source output = clips.at("fg");
        output.components = kOfxImageComponentRGBA;
        made->connect("Output", &output);
        for (const auto& [name, values] : settings) made->set(name, values);
        return made;
    }

    // As from a project with these values.
    std::unique_ptr<Instance> loaded(const Instance::Values& saved, const Clips& clips = two_clips()) {
        return instance(clips, {}, kOfxImageEffectContextGeneral, saved);
    }

    std::unique_ptr<Host> host_;
};

}  // namespace ofxtest
