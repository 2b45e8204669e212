// The render of one window of one frame.
#include <algorithm>
#include <cstdint>
#include <new>
#include <string_view>
#include <utility>

#include "ZoImage/Samples.h"
#include "ZoImage/StatusColour.h"
#include "host/Host.h"
#include "host/Properties.h"
#include "images/Identity.h"
#include "instance/Instance.h"

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

void write_status(const PixelView& output, int y, const Box& region, const float* alpha) {
    constexpr int kPiece = 256;
    std::array<std::array<float, kPiece>, 3> colours;
    for (int x = region.x; x < region.r; x += kPiece) {
        const int end = std::min(x + kPiece, region.r);
        const float* const from = alpha + (x - region.x);
        for (std::size_t n = 0; n < static_cast<std::size_t>(end - x); ++n) {
            const std::uint32_t colour = status_colour(from[n]);
            for (std::size_t c = 0; c < 3; ++c) {
                colours[c][n] = to_float(static_cast<std::uint8_t>(colour >> (16 - 8 * c)));
            }
        }
        write_row(output, y, x, end, {colours[0].data(), colours[1].data(), colours[2].data(), from});
    }
}

// What a view shows of a row.
void write_shown(int view, const PixelView& output, int y, const Box& region, const Row& row) {
    const float* const alpha = row[kAlpha];
    if (view == kStatusView) return write_status(output, y, region, alpha);
    const bool matte = view == kMatteView;
    write_row(output, y, region.x, region.r,
              {matte ? alpha : row[kRed], matte ? alpha : row[kGreen], matte ? alpha : row[kBlue], alpha});
}

}  // namespace

void Instance::show_on_node(Shown what, const std::string& text) {
    const std::lock_guard hold(shown_mutex_);
    const bool again = shown_ == text;
    shown_ = text;
    // An error stands for every tile that failed, a warning for all that were made.
    const bool error = what == Shown::kError;
    if (error || !again) show(effect_, error ? kOfxMessageError : kOfxMessageWarning, text.c_str(), again);
}

void Instance::clear_node() {
    const std::lock_guard hold(shown_mutex_);
    if (!std::exchange(shown_, {}).empty()) clear_shown(effect_);
}

OfxStatus Instance::render(OfxPropertySetHandle in, OfxPropertySetHandle /*out*/) {
    std::string warning;
    try {
        warning = render_window(in);
    } catch (const std::bad_alloc&) {  // the host sees to that
        throw;
    } catch (const std::exception& error) {
        if (error.what()[0] != '\0') show_on_node(Shown::kError, error.what());
        throw;
    }
    if (warning.empty()) {
        clear_node();
    } else {
        show_on_node(Shown::kWarning, warning);
    }
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

// Of a clip that should have one where the foreground is: readers that fail say no more.
std::string Instance::missing_images(const Pictures& pictures, OfxTime time) const {
    std::string names;
    for (std::size_t n = 0; n < kInputs; ++n) {
        OfxRectD region;
        if (!pictures[n] || !pictures[n]->empty() || !extent(n, time, region)) continue;
        names += (names.empty() ? "" : ", ") + std::string(inputs_[n].name);
    }
    return names.empty() ? names : names + " delivered no image, which counts as black";
}

std::string Instance::render_window(OfxPropertySetHandle in) {
    const Properties arguments(in);
    const OfxTime time = arguments.number(kOfxPropTime);
    const RenderScale scale = arguments.scale();
    const std::string field = arguments.text(kOfxImageEffectPropFieldToRender);
    const Rows rows(field);
    const Values values = editor_.parameters().values(time);
    const int view = editor_.own().view(time);
    require_foreground();

    const Image output(output_.handle, time, nullptr, scale);
    if (output.empty()) throw Failure(kOfxStatFailed, "the host gave no image to write to");
    Box window = output.view().bounds;
    Box asked;
    if (arguments.box(kOfxImageEffectPropRenderWindow, asked)) window.intersect(asked);
    if (window.empty()) return {};

    const Pictures pictures = fetch(time, scale, false);
    std::string missing = missing_images(pictures, time);
    const Image& foreground = *pictures[kForeground];
    Box region = window;
    region.intersect(foreground.frame());
    clear_around(output.view(), window, region, rows);
    if (region.empty()) return missing;

    std::array<bool, kInputs> used{};
    std::array<Hash, kInputs> identities;
    for (std::size_t n = 0; n < kInputs; ++n) {
        used[n] = pictures[n].has_value();
        if (used[n]) identities[n] = identity_of(*pictures[n], time, scale, field);
    }
    Hash state = identity_of(values);
    state.append(identities[kForeground]);
    Hash picture = identities[kForeground];
    for (const int side : {region.x, region.y, region.r, region.t, view}) picture.append(side);
    NodePool::Lease node = renderers_.take(state, picture);
    node->set(values, scale, used);
    for (std::size_t n = 0; n < kInputs; ++n) {
        if (used[n]) node->input(n).serve(*pictures[n], foreground.frame(), identities[n]);
    }
    if (!used[kBackground]) node->input(kBackground).outline({}, foreground.frame());

    Iop& root = node->root(view);
    if (!node->image().error().empty()) throw Failure(kOfxStatFailed, node->image().error());
    const bool complete = node->render(effect_, root, region, node.rows(), [&](int y, const Row& row) {
        if (rows.has(y)) write_shown(view, output.view(), y, region, row);
    });
    if (!complete) throw Failure(kOfxStatFailed);  // the host does not want it any more
    return missing;
}

}  // namespace veloxa::ofx
