#include "ofx/Scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sstream>

namespace ofxtest {

using namespace Zo::Image;

namespace {

constexpr std::array<const char*, 5> kInputs{"fg", "cp", "bg", "gm", "hm"};

// Backing with grain, half light on a part of it, a figure that moves a pixel a frame, its edge soft.
float foreground(double time, int c, int x, int y) {
    if (c == 3) return 0.5f + 0.01f * static_cast<float>((x + y) % 7);
    const float backing[] = {0.15f, 0.6f, 0.2f};
    const float figure[] = {0.55f, 0.42f, 0.35f};
    const float light = inside(kShade, x, y) ? 0.5f : 1.0f;
    const float grain = 0.004f * static_cast<float>((x * 7 + y * 13 + c * 5) % 5 - 2);
    const double dx = x - 34 - time, dy = y - 24;
    const float cover = std::clamp(1.6f - 0.12f * static_cast<float>(std::hypot(dx, dy)), 0.0f, 1.0f);
    return light * backing[c] * (1.0f - cover) + figure[c] * cover + grain;
}

Source picture(std::function<float(double, int, int, int)> pixel) {
    Source source;
    source.box = kFrame;
    source.pixel = std::move(pixel);
    return source;
}

}  // namespace

Settings look(const std::string& text) {
    Settings settings{{"screen_color", kScreen}};
    std::istringstream items(text);
    for (std::string item, name; std::getline(items, item, ',');) {
        std::istringstream words(item);
        words >> name;
        for (double value; words >> value;) settings[name].push_back(value);
    }
    return settings;
}

Clips two_clips() {
    Clips clips;
    clips["fg"] = picture(foreground);
    clips["bg"] = picture([](double, int c, int x, int y) {
        return 0.1f + 0.2f * static_cast<float>(c) + 0.003f * static_cast<float>(x + 2 * y);
    });
    return clips;
}

Clips all_clips() {
    Clips clips = two_clips();
    clips["cp"] = picture([](double, int c, int x, int y) {
        const float light = inside(kShade, x, y) ? 0.5f : 1.0f;
        const float backing[] = {0.15f, 0.6f, 0.2f, 1.0f};
        return light * backing[c];
    });
    clips["gm"] = picture([](double, int c, int x, int) {
        return c != 3 ? 0.25f : std::clamp(0.2f * static_cast<float>(x - 50), 0.0f, 1.0f);
    });
    clips["hm"] = picture([](double, int c, int, int y) {
        return c != 3 ? 0.75f : std::clamp(0.25f * static_cast<float>(y - 36), 0.0f, 1.0f);
    });
    return clips;
}

OfxRectI scaled_box(const OfxRectI& b, double scale) {
    return pixels_of(canonical_of(b, 1.0, 1.0), scale);
}

Clips changed(Clips clips, const std::function<Pixel(const Pixel&)>& wanted) {
    for (auto& [name, source] : clips) source.pixel = wanted(source.pixel);
    return clips;
}

Reference::Reference(const Clips& clips, const Settings& settings, double time, double scale)
    : node(NodeContext{}), panel(node) {
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
            const double level = level_of(source.pixel(time, component, x, y), source.depth);
            return static_cast<float>(level) / static_cast<float>(white_of(source.depth));
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

Frame Reference::render() {
    const test::Picture picture = test::render(node);
    Frame frame({picture.box.x, picture.box.y, picture.box.r, picture.box.t});
    for (std::size_t i = 0; i < picture.planes[1].size(); ++i) {
        for (std::size_t c = 0; c < 4; ++c) frame.values[4 * i + c] = picture.planes[c + 1][i];
    }
    return frame;
}

double shortest(double value) {
    double read = 0.0;
    for (int digits = 1; static_cast<float>(read) != static_cast<float>(value); ++digits) {
        char text[32];
        std::snprintf(text, sizeof text, "%.*g", digits, value);
        read = std::stod(text);
    }
    return read;
}

int differences(const Frame& a, const Frame& b) {
    if (a.values.size() != b.values.size() || std::memcmp(&a.box, &b.box, sizeof a.box) != 0) return -1;
    int count = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        count += std::memcmp(&a.values[i], &b.values[i], sizeof(float)) != 0 ? 1 : 0;
    return count;
}

void OfxTest::SetUp() {
    services().threads = 2;
    services().threads_fail = false;
    services().time = 0.0;
    take_faults();
    take_messages();
}

void OfxTest::TearDown() {
    host_.reset();
    EXPECT_EQ(take_faults(), "");
    EXPECT_EQ(Image::held, 0);
    EXPECT_EQ(take_messages(), std::vector<std::string>());
}

Host& OfxTest::host(HostOptions options) {
    host_.reset();
    host_ = std::make_unique<Host>(OFX_BUNDLE_DIR, std::move(options));
    if (host_->load() != kOfxStatOK) throw std::runtime_error("the plug-in does not load");
    return *host_;
}

std::unique_ptr<Instance> OfxTest::instance(const Clips& clips, const Settings& settings,
                                            const std::string& context, const Host::Values& saved) {
    if (!host_) host();
    auto made = host_->create(context, saved);
    if (!made) throw std::runtime_error("no instance");
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

}  // namespace ofxtest
