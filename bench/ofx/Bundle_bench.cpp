// A frame through the bundle, as a host's render action, and the same frame keyed as the program does, on as
// many threads, by turns: what fetching images, converting them and handing the result back cost.
#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "ZoImage/KnobPanel.h"
#include "keyer/NodeRig.h"
#include "ofx/host/Host.h"
#include "support/Table.h"

namespace {

using namespace ofxtest;
using namespace Zo::Image;

struct Size {
    int width, height;
};
constexpr Size kSizes[]{{1920, 1080}, {4096, 2160}};

struct Kind {
    const char* name;
    const char *depth, *components;
};
constexpr Kind kKinds[]{{"float RGBA", kOfxBitDepthFloat, kOfxImageComponentRGBA},
                        {"float RGB", kOfxBitDepthFloat, kOfxImageComponentRGB},
                        {"half RGBA", kOfxBitDepthHalf, kOfxImageComponentRGBA},
                        {"byte RGBA", kOfxBitDepthByte, kOfxImageComponentRGBA}};

const bench::Plate& plate_of(const Size& size) {
    static std::map<int, bench::Plate> plates;
    auto& plate = plates[size.width];
    if (!plate.fg) plate = bench::make_plate(size.width, size.height);
    return plate;
}

Source source_of(const std::shared_ptr<const veloxa::Image>& image, const Kind& kind) {
    Source source{.depth = kind.depth, .components = kind.components, .steady = true};
    const Box& box = image->info.box;
    source.box = {box.x, box.y, box.r, box.t};
    source.pixel = [image](double, int c, int x, int y) {
        return c == 3 ? 1.0f : image->line(static_cast<Channel>(kRed + c), y)[x - image->info.box.x];
    };
    return source;
}

// The host's effect with the rig's inputs and knobs.
class BundleRig {
  public:
    BundleRig(const bench::Plate& plate, const bench::Configuration& configuration, const Kind& kind)
        : fg_(source_of(plate.fg, kind)), cp_(source_of(plate.cp, kind)), bg_(source_of(plate.bg, kind)) {
        if (host_.load() != kOfxStatOK) throw std::runtime_error("the bundle does not load");
        effect_ = std::make_unique<Instance>(host_, kOfxImageEffectContextGeneral,
                                             host_.descriptor(kOfxImageEffectContextGeneral));
        effect_->create({});
        effect_->connect("fg", &fg_);
        if (configuration.clean_plate) effect_->connect("cp", &cp_);
        effect_->connect("bg", &bg_);
        out_ = fg_;
        out_.components = kOfxImageComponentRGBA;
        effect_->connect("Output", &out_);
    }
    void turn_knobs(VeloxaKeyer& node) {
        const KnobPanel panel(node);
        for (const auto& knob : panel.knobs()) {
            const Param* const param = effect_->params.find(knob->name());
            if (param == nullptr || !param->holds_value() || param->is_text()) continue;
            std::vector<double> values;
            for (int i = 0; i < param->dimension; ++i) values.push_back(knob->get_value(i));
            effect_->set(knob->name(), values);
        }
    }
    void key_next_frame() {
        if (effect_->render_unseen(effect_->window(), ++time_) != kOfxStatOK) {
            throw std::runtime_error("a render failed");
        }
    }

  private:
    Source fg_, cp_, bg_, out_;
    Host host_{HostOptions{}};
    std::unique_ptr<Instance> effect_;
    double time_ = 0.0;
};

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + std::ssize(values) / 2);
    return values[values.size() / 2];
}

void compare(benchmark::State& state, const bench::Configuration& configuration, const Size& size,
             const Kind& kind) {
    for (auto _ : state) {
        for (const int threads : {1, 2}) {
            services.threads = threads;
            bench::NodeRig node(plate_of(size), configuration, threads);
            BundleRig bundle(plate_of(size), configuration, kind);
            bundle.turn_knobs(node.node());
            std::vector<double> alone, through, ratios;
            for (int n = 0; n < 24; ++n) {
                using Clock = std::chrono::steady_clock;
                const auto milliseconds = [](Clock::duration d) {
                    return std::chrono::duration<double, std::milli>(d).count();
                };
                node.use_fresh_output();
                const auto begin = Clock::now();
                node.key_next_frame();
                const auto middle = Clock::now();
                bundle.key_next_frame();
                const auto end = Clock::now();
                if (n < 3) continue;
                alone.push_back(milliseconds(middle - begin));
                through.push_back(milliseconds(end - middle));
                ratios.push_back(through.back() / alone.back());
            }
            const std::string suffix = threads == 1 ? ", 1 thread" : ", 2 threads";
            state.counters["program" + suffix] = median(alone);
            state.counters["bundle" + suffix] = median(through);
            state.counters["ratio" + suffix] = median(ratios);
        }
    }
    for (const std::string& fault : faults.take()) state.SkipWithError(fault.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    for (const Size& size : kSizes) {
        for (const bench::Configuration& configuration : bench::kConfigurations) {
            for (const Kind& kind : kKinds) {
                const std::string name = std::string(configuration.name) + ", " + kind.name + ", " +
                                         std::to_string(size.width) + " x " + std::to_string(size.height);
                benchmark::RegisterBenchmark(name.c_str(), compare, configuration, size, kind)->Iterations(1);
            }
        }
    }
    std::vector<bench::Column> columns;
    for (const char* suffix : {", 1 thread", ", 2 threads"}) {
        for (const char* counter : {"program", "bundle"})
            columns.push_back({std::string(counter) + suffix, 1});
        columns.push_back({std::string("ratio") + suffix, 2});
    }
    return bench::run_table(argc, argv, "one frame, milliseconds", columns);
}
