// What the user samples with: areas of the plate in the frame that is shown, for the tool that is active.
#include <sstream>

#include "host/Host.h"
#include "host/Properties.h"
#include "instance/Instance.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// "TOOL TIME x y r t x y r t ...", pixels of the full frame.
std::string write_pending(const std::string& tool, const PenStroke& stroke) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << tool << ' ' << stroke.time;
    for (const Box& area : stroke.areas) {
        for (const int side : {area.x, area.y, area.r, area.t}) text << ' ' << side;
    }
    return text.str();
}

std::string read_pending(const std::string& text, PenStroke& stroke) {
    std::istringstream words(text);
    words.imbue(std::locale::classic());
    std::string tool;
    words >> tool >> stroke.time;
    for (Box area; words >> area.x >> area.y >> area.r >> area.t;) stroke.areas.push_back(area);
    return tool;
}

std::string size_text(const Box& box) {
    return std::to_string(box.x) + "," + std::to_string(box.y) + " to " + std::to_string(box.r) + "," +
           std::to_string(box.t);
}

// Those parts of the areas that are in the frame.
std::vector<Box> within(std::vector<Box> areas, const Box& frame) {
    for (Box& area : areas) area.intersect(frame);
    std::erase_if(areas, [](const Box& area) { return area.empty(); });
    if (areas.empty()) {
        throw Failure(kOfxStatFailed,
                      "what was marked lies outside of the foreground, which is " + size_text(frame));
    }
    return areas;
}

}  // namespace

void Instance::use_tool(std::size_t n, OfxTime time, const RenderScale& scale, const Areas& areas) {
    require_foreground();
    const PixelGrid grid{scale, aspect(kForeground)};
    std::string remark;
    {
        const Pictures pictures = fetch(time, grid.scale, true);
        const Image& plate = *pictures[kForeground];
        if (plate.empty()) throw NoPicture(kOfxStatFailed, "the foreground has no image here");
        const std::vector<Box> marked = areas ? within(areas(grid), plate.frame()) : std::vector<Box>();
        remark = editor_.use_tool(n, time, grid, pictures, marked);
    }
    if (!remark.empty()) tell(effect_, kOfxMessageMessage, remark.c_str());
}

void Instance::press_tool(std::size_t n, OfxTime time, const RenderScale& scale) {
    if (!editor_.is_stroked(n)) return use_tool(n, time, scale, nullptr);
    if (!host_has_overlays()) {
        return use_tool(n, time, scale, [&](const PixelGrid& grid) -> std::vector<Box> {
            return {grid.pixels(editor_.own().sampling_rectangle(time))};
        });
    }
    editor_.activate(n);
    editor_.own().report("drag over the picture in the viewer to use the tool \"" +
                         editor_.list().parameters()[n].label + "\"");
}

void Instance::take_stroke(const PenStroke& stroke, const RenderScale& scale) {
    use_tool(stroke.tool, stroke.time, scale, [&](const PixelGrid& grid) {
        std::vector<Box> areas;
        const PixelGrid full{{1.0, 1.0}, grid.aspect};
        for (const Box& area : stroke.areas) areas.push_back(grid.pixels(full.canonical(area)));
        return areas;
    });
}

void Instance::pen_stroke(const PenStroke& drawn, const RenderScale& scale) {
    const PenStroke stroke{drawn.tool, drawn.time, within(drawn.areas, full_frame(drawn.time))};
    try {
        take_stroke(stroke, scale);
        return drop_pending();
    } catch (const NoPicture&) {
        // By the standard images are not to be had while the pen is used; most hosts do not mind.
    }
    editor_.own().set_text(kPendingStroke,
                           write_pending(editor_.list().parameters()[stroke.tool].name, stroke));
    show_pending();
    editor_.own().report(
        "no picture could be had while one draws: press \"Take Sample\", or Escape over the picture to give "
        "the stroke up");
}

void Instance::take_pending(const RenderScale& scale) {
    PenStroke stroke;
    const std::string tool = read_pending(editor_.own().text(kPendingStroke), stroke);
    const auto n = editor_.parameters().find(tool);
    try {
        if (!n || !editor_.is_stroked(*n) || stroke.areas.empty()) {
            throw Failure(kOfxStatFailed, "no stroke waits to be looked at");
        }
        stroke.tool = *n;
        take_stroke(stroke, scale);
    } catch (const NoPicture&) {  // another try may find one
        throw;
    } catch (...) {
        drop_pending();
        throw;
    }
    drop_pending();
}

void Instance::drop_pending() const {
    editor_.own().set_text(kPendingStroke, "");
    show_pending();
}

void Instance::show_pending() const {
    const bool waits = !editor_.own().text(kPendingStroke).empty();
    editor_.own().named(kTakeSample).properties().set(kOfxParamPropEnabled, waits ? 1 : 0);
}

std::vector<Box> Instance::pending_areas() const {
    PenStroke stroke;
    read_pending(editor_.own().text(kPendingStroke), stroke);
    return stroke.areas;
}

}  // namespace veloxa::ofx
