// The render of one window of one frame.
#include <new>
#include <string_view>

#include "host/Host.h"
#include "images/Identity.h"
#include "instance/Instance.h"
#include "host/Properties.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// Rows of a fielded picture: the lower field has the even ones.
struct Rows {
    bool all = true;
    int parity = 0;

    explicit Rows(std::string_view field)
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
    } catch (const std::bad_alloc&) {  // the host sees to that
        throw;
    } catch (const std::exception& error) {
        if (error.what()[0] != '\0') show_error(effect_, error.what(), error_shown_.exchange(true));
        throw;
    }
    if (error_shown_.exchange(false)) clear_error(effect_);
    return kOfxStatOK;
}

OfxStatus Instance::begin_sequence(OfxPropertySetHandle /*in*/, OfxPropertySetHandle /*out*/) {
    ++sequences_;
    return kOfxStatOK;
}

// Idle nodes keep whole frames. One of them is of use to the next render of an edit, more are not.
OfxStatus Instance::end_sequence(OfxPropertySetHandle /*in*/, OfxPropertySetHandle /*out*/) {
    if (--sequences_ > 0) return kOfxStatOK;
    renderers_.purge(1);
    planners_.purge(1);
    return kOfxStatOK;
}

void Instance::render_window(OfxPropertySetHandle in) {
    const Properties arguments(in);
    const OfxTime time = arguments.number(kOfxPropTime);
    const RenderScale scale = arguments.scale();
    const std::string field = arguments.text(kOfxImageEffectPropFieldToRender);
    const Rows rows(field);
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
        if (used[n]) identities[n] = identity_of(*pictures[n], time, scale, field);
    }
    Hash state = identity_of(values);
    state.append(identities[kForeground]);
    Hash picture = identities[kForeground];
    for (const int side : {region.x, region.y, region.r, region.t}) picture.append(side);
    NodePool::Lease node = renderers_.take(state, picture);
    node->set(values, scale, used);
    for (std::size_t n = 0; n < kInputs; ++n) {
        if (used[n]) node->input(n).serve(*pictures[n], foreground.frame(), identities[n]);
    }
    if (!used[kBackground]) node->input(kBackground).outline({}, foreground.frame());

    node->image().validate(true);
    if (!node->image().error().empty()) throw Failure(kOfxStatFailed, node->image().error());
    const bool complete = node->render(effect_, region, node.rows(), [&](int y, const Row& row) {
        if (!rows.has(y)) return;
        write_row(output.view(), y, region.x, region.r, {row[kRed], row[kGreen], row[kBlue], row[kAlpha]});
    });
    if (!complete) throw Failure(kOfxStatFailed);  // the host does not want it any more
}

}  // namespace veloxa::ofx
