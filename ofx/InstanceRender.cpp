// The render of one window of one frame.
#include "Host.h"
#include "Identity.h"
#include "Instance.h"
#include "Properties.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// Rows of a fielded picture: the lower field has the even ones.
struct Rows {
    bool all = true;
    int parity = 0;

    explicit Rows(const std::string& field)
        : all(field != kOfxImageFieldLower && field != kOfxImageFieldUpper),
          parity(field == kOfxImageFieldUpper ? 1 : 0) {}
    bool has(int y) const { return all || (y & 1) == parity; }
};

// Blackens what the window has beyond the frame.
void clear_around(const PixelView& output, const Box& window, const Box& inside, const Rows& rows) {
    for (int y = window.y; y < window.t; ++y) {
        if (!rows.has(y)) continue;
        if (inside.empty() || y < inside.y || y >= inside.t) {
            clear_row(output, y, window.x, window.r);
        } else {
            clear_row(output, y, window.x, inside.x);
            clear_row(output, y, inside.r, window.r);
        }
    }
}

}  // namespace

OfxStatus Instance::render(OfxPropertySetHandle in, OfxPropertySetHandle /*out*/) {
    try {
        render_window(in);
    } catch (const Failure& failure) {
        if (failure.what()[0] != '\0') error_shown_ = true;
        throw;
    } catch (...) {
        error_shown_ = true;
        throw;
    }
    if (error_shown_.exchange(false)) clear_error(effect_);
    return kOfxStatOK;
}

void Instance::render_window(OfxPropertySetHandle in) {
    const Properties arguments(in);
    const OfxTime time = arguments.number(kOfxPropTime);
    const RenderScale scale{arguments.number(kOfxImageEffectPropRenderScale, 1.0, 0),
                            arguments.number(kOfxImageEffectPropRenderScale, 1.0, 1)};
    const Rows rows(arguments.text(kOfxImageEffectPropFieldToRender));
    const Values values = editor_.parameters().values(time);
    require_foreground();

    const Image output(output_.handle, time, nullptr, scale);
    if (output.empty()) throw Failure(kOfxStatFailed, "the host gave no image to write to");
    Box window = output.view().bounds;
    Box asked;
    if (arguments.box(kOfxImageEffectPropRenderWindow, asked)) window.intersect(asked);
    if (window.empty()) return;

    const Pictures pictures = fetch(time, scale, false);
    const Image& foreground = *pictures[kForeground];
    Box region = window;
    region.intersect(foreground.frame());
    clear_around(output.view(), window, region, rows);
    if (region.empty()) return;

    std::array<bool, kInputs> used{};
    std::array<Hash, kInputs> identities;
    for (std::size_t n = 0; n < kInputs; ++n) {
        used[n] = pictures[n].has_value();
        if (used[n]) identities[n] = identity_of(*pictures[n], time, scale);
    }
    Hash state = identity_of(values);
    state.append(identities[kForeground]);
    const NodePool::Lease node = renderers_.take(state);
    node->set(values, scale, used);
    for (std::size_t n = 0; n < kInputs; ++n) {
        if (used[n]) node->input(n).serve(*pictures[n], foreground.frame(), identities[n]);
    }
    if (!used[kBackground]) node->input(kBackground).outline({}, foreground.frame());

    node->image().validate(true);
    if (!node->image().error().empty()) throw Failure(kOfxStatFailed, node->image().error());
    const bool complete = node->render(effect_, region, [&](int y, const Row& row) {
        if (!rows.has(y)) return;
        write_row(output.view(), y, region.x, region.r, {row[kRed], row[kGreen], row[kBlue], row[kAlpha]});
    });
    if (!complete) throw Failure(kOfxStatFailed);  // the host does not want it any more
}

}  // namespace veloxa::ofx
