// One instance of the effect: its clips and parameters, the node that its user edits, and nodes to render
// with.
//
// The actions about renders (render, the regions, identity) come on any threads, many at once; they read
// parameters and clips, take a node of their own, and touch nothing else. The others come on the main thread.
// All throw Failure.
#pragma once

#include <array>
#include <atomic>
#include <string>

#include "images/Clips.h"
#include "instance/Editor.h"
#include "instance/NodePool.h"

namespace veloxa::ofx {

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

    void render_window(OfxPropertySetHandle in);
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
    std::atomic<bool> error_shown_{false};
};

}  // namespace veloxa::ofx
