#include "keyer/NodeRig.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "plates/Set.h"

namespace bench {

using namespace Zo::Image;

namespace {

std::shared_ptr<const veloxa::Image> side_by_side(const veloxa::Image& image, int copies) {
    if (copies == 1) return std::make_shared<veloxa::Image>(image);
    Info info = image.info;
    info.box.r = info.format.box.r = info.box.r * copies;
    auto wide = std::make_shared<veloxa::Image>(info);
    for (int y = info.box.y; y < info.box.t; ++y) {
        for (const Channel c : kMaskRgb) {
            for (std::size_t i = 0; i < static_cast<std::size_t>(copies); ++i) {
                std::copy_n(image.line(c, y), image.width(), wide->line(c, y) + i * image.width());
            }
        }
    }
    return wide;
}

veloxa::Image output_of(int width, int height) {
    Info info;
    info.box = info.format.box = {0, 0, width, height};
    info.channels = kMaskRgba;
    return veloxa::Image(info);
}

}  // namespace

Plate make_plate(int width, int height, int copies) {
    const plate::Set set = plate::render_set({width, height, 1, plate::Screen::kGreen}, 0, 0);
    return {side_by_side(set[plate::kForeground], copies), side_by_side(set[plate::kCleanPlate], copies),
            side_by_side(set[plate::kBackground], copies)};
}

const std::vector<Configuration> kConfigurations{
    {"default", false, [](KnobStorage&) {}},
    {"clean plate", true, [](KnobStorage&) {}},
    {"edge kernel 3", false, [](KnobStorage& k) { k.edge_kernel = 3.0f; }},
    {"clean-up, shrink 2, blur 2", false,
     [](KnobStorage& k) {
         k.cleanup = true;
         k.cleanup_shrink = {2.0, 2.0};
         k.cleanup_blur = {2.0, 2.0};
     }},
    {"unmix", false, [](KnobStorage& k) { k.unmix_method = 1; }},
    {"film", false,
     [](KnobStorage& k) {
         k.film = true;
         k.film_strength = 50.0f;
     }},
    {"shadows", false, [](KnobStorage& k) { k.shadow = true; }},
    {"shadows, clean plate", true, [](KnobStorage& k) { k.shadow = true; }},
    {"colour conformance", false,
     [](KnobStorage& k) {
         k.color_conformance = true;
         k.color_hue = 20.0f;
     }},
    {"everything", true,
     [](KnobStorage& k) {
         k.film = k.shadow = k.cleanup = k.color_conformance = true;
         k.edge_kernel = 3.0f;
         k.cleanup_shrink = k.cleanup_blur = k.shadows_blur = {2.0, 2.0};
         k.film_strength = 50.0f;
         k.color_hue = 20.0f;
         k.overlay_mode = 1;
     }},
};

RowSource::RowSource(std::shared_ptr<const veloxa::Image> image, int width, int height)
    : Iop(NodeContext{}), image_(std::move(image)), box_{0, 0, width, height} {
    if (width == 0) box_ = image_->info.box;
}

void RowSource::_validate(bool /*for_real*/) {
    info_.box = info_.format.box = box_;
    info_.channels = kMaskRgb;
}

void RowSource::engine(int y, int x, int /*r*/, const ChannelSet& channels, Row& row) {
    const int rows = image_->info.box.height();
    const int strips = image_->info.box.width() / box_.width();
    for (const Channel c : channels) {
        if (kMaskRgb.has(c)) {
            row.refer(c, image_->line(c, y % rows) + y / rows % strips * box_.width() + x);
        } else {
            row.set_zero(c);
        }
    }
}

NodeRig::NodeRig(const Plate& plate, const Configuration& configuration, int threads, int width, int height,
                 const AbortFlag* abort)
    : fg_(plate.fg, width, height),
      cp_(plate.cp, width, height),
      bg_(plate.bg, width, height),
      node_(NodeContext{}),
      renderer_(threads, abort),
      output_(output_of(width == 0 ? plate.fg->info.box.width() : width,
                        height == 0 ? plate.fg->info.box.height() : height)) {
    node_.set_input(0, &fg_);
    if (configuration.clean_plate) node_.set_input(1, &cp_);
    node_.set_input(2, &bg_);
    // As one picks it: the mean of a box of backing beside the figure.
    const veloxa::Image& backing = *plate.cp;
    const auto begin = backing.width() * 2 / 3;
    const int middle = backing.info.box.height() * 3 / 4;
    for (const Channel c : kMaskRgb) {
        double sum = 0.0;
        for (int y = middle - 8; y < middle + 8; ++y) {
            for (std::size_t x = begin; x < begin + 16; ++x) {
                sum += static_cast<double>(backing.line(c, y)[x]);
            }
        }
        knobs().screen_color[static_cast<std::size_t>(c - kRed)] = static_cast<float>(sum / 256.0);
    }
    configuration.set(knobs());
}

void NodeRig::key_next_frame() {
    for (Iop* source : {&fg_, &cp_, &bg_}) source->invalidate();
    key_again();
}

void NodeRig::key_again() {
    node_.invalidate();
    node_.validate(true);
    renderer_.render(node_, output_.info.box, kMaskRgba, [&](int y, const Row& row) {
        for (const Channel c : kMaskRgba) std::copy_n(row[c], row.width(), output_.line(c, y));
    });
}

void NodeRig::use_cache(std::size_t budget) {
    cache_ = std::make_unique<RowCache>(budget);
    renderer_.use_cache(cache_.get());
}

double NodeRig::backing_share() {
    std::atomic<std::int64_t> certain{0};
    renderer_.render(
        *node_.child("shrinkScreen")->as_iop(), output_.info.box, kMaskAlpha, [&](int /*y*/, const Row& row) {
            const float* region = row[kAlpha];
            certain += std::count_if(region, region + row.width(), [](float v) { return v != 0.0f; });
        });
    return static_cast<double>(certain) / pixels();
}

std::uint64_t NodeRig::checksum() const {
    std::uint64_t sum = 0;
    for (int y = output_.info.box.y; y < output_.info.box.t; ++y) {
        for (const Channel c : kMaskRgba) {
            for (std::size_t x = 0; x < output_.width(); ++x) {
                std::uint32_t bits = 0;
                std::memcpy(&bits, output_.line(c, y) + x, sizeof bits);
                sum = (sum ^ bits) * 0x100000001b3U;
            }
        }
    }
    return sum;
}

}  // namespace bench
