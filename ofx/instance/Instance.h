// One instance of the effect: its clips and parameters, the node that its user edits, and nodes to render
// with.
//
// The actions about renders (render, the regions, identity) come on any threads, many at once; they read
// parameters and clips, take a node of their own, and touch nothing else. The others come on the main thread.
// All throw Failure.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "images/Clips.h"
#include "instance/Editor.h"
#include "instance/NodePool.h"

namespace veloxa::ofx {

// What the pen marked: areas in pixels of the full frame.
struct PenStroke {
    std::size_t tool = 0;  // its parameter
    OfxTime time = 0.0;
    std::vector<Zo::Image::Box> areas;
};

class Instance {
  public:
    static void create(OfxImageEffectHandle effect);
    static void destroy(OfxImageEffectHandle effect);
    // Throws when the effect has no instance, as after a failed create().
    static Instance& of(OfxImageEffectHandle effect);

    // Actions: arguments in, results out, the status for the host.
    OfxStatus render(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus begin_sequence(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus end_sequence(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus region_of_definition(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus regions_of_interest(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus is_identity(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus clip_preferences(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus changed(OfxPropertySetHandle in, OfxPropertySetHandle out);
    OfxStatus purge_caches(OfxPropertySetHandle in, OfxPropertySetHandle out);

    // For the overlay. A stroke for which the host lends no picture waits for the button "Take Sample".
    Editor& editor() { return editor_; }
    double pixel_aspect() const { return connected(kForeground) ? aspect(kForeground) : 1.0; }
    // Of the foreground, in pixels of the full frame; endless where that is not known.
    Zo::Image::Box full_frame(OfxTime time) const;
    void pen_stroke(const PenStroke& drawn, const RenderScale& scale);
    std::vector<Zo::Image::Box> pending_areas() const;
    void drop_pending() const;

  private:
    struct Clip {
        const char* name = nullptr;
        OfxImageClipHandle handle = nullptr;  // null for an input that the context does not have
        OfxPropertySetHandle properties = nullptr;
    };

    explicit Instance(OfxImageEffectHandle effect);
    Clip clip(const char* name) const;
    bool connected(std::size_t n) const;
    std::array<bool, kInputs> connections() const;
    // All that the clip can deliver at the time, canonical coordinates; false when it has nothing.
    bool extent(std::size_t n, OfxTime time, OfxRectD& extent) const;
    double aspect(std::size_t n) const;
    void require_foreground() const;
    const char* premultiplication() const;

    // Uses a tool of the node over areas of the foreground, of its pixels on the grid; none for tools that
    // look at all of it.
    using Areas = std::function<std::vector<Zo::Image::Box>(const PixelGrid&)>;
    void use_tool(std::size_t n, OfxTime time, const RenderScale& scale, const Areas& areas);
    void press_tool(std::size_t n, OfxTime time, const RenderScale& scale);
    void take_stroke(const PenStroke& stroke, const RenderScale& scale);
    void take_pending(const RenderScale& scale);
    void show_pending() const;

    void press_own(const std::string& button, OfxTime time, const RenderScale& scale);
    void load_settings(OfxTime time);
    void save_settings();
    // What is missing before anything can be keyed.
    void show_start() const;

    // Returns what the user should know beside the picture; empty for nothing.
    std::string render_window(OfxPropertySetHandle in);
    std::string missing_images(const Pictures& pictures, OfxTime time) const;
    enum class Shown { kWarning, kError };
    void show_on_node(Shown what, const std::string& text);
    void clear_node();
    // The images of what is connected: as much as the render asked for before, or the whole frames, the
    // foreground's where a clip has no end.
    Pictures fetch(OfxTime time, const RenderScale& scale, bool whole) const;

    OfxImageEffectHandle effect_;
    bool general_;
    std::array<Clip, kInputs> inputs_;
    Clip output_;
    Editor editor_;
    std::size_t screen_color_;
    std::size_t output_mode_;
    NodePool renderers_;
    NodePool planners_;              // only make requests, so that those disturb no renderer's frames
    std::atomic<int> sequences_{0};  // of renders that go on
    std::mutex shown_mutex_;
    std::string shown_;  // on the node, until a good render
};

}  // namespace veloxa::ofx
