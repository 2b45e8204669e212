// The hair: tapering curved strands whose coverage is worked out, not sampled, however thin they are.
#pragma once

#include <array>
#include <vector>

#include "plates/Look.h"

namespace plate {

// A strand as a chain of points in pixels, row 0 at the top.
struct Strand {
    static constexpr int kPoints = 20;
    std::array<Vec2, kPoints> points;
    float root_width = 0.0f, tip_width = 0.0f;  // half widths, in pixels
    float taper_from = 0.6f;                    // where along it the narrowing begins
    Vec3 root, tip;
    float shine_at = 0.3f;  // where along it the key light glints
    float spill = 0.03f;
    float top = 0.0f, bottom = 0.0f;  // the rows that it touches

    void measure();
    float half_width(float t) const;
    Shade shade(float t, float across) const;
};

// How the head lies in the picture.
struct Placement {
    float width, height;  // of the frame, in pixels
    float mirror;
    Vec2 head;  // its middle, in heights
    float tilt;
    Vec2 pan;

    Vec2 to_pixels(Vec2 p) const {
        return {0.5f * width + (mirror * p.x - pan.x) * height, (p.y - pan.y) * height};
    }
    // From head units (Figure.h) to pixels.
    Vec2 from_head(Vec2 q) const;
};

struct Hair {
    std::vector<Strand> back;   // behind shoulders and neck
    std::vector<Strand> front;  // over the face's sides
    std::vector<Strand> loose;  // single hairs against the backing
};

Hair grow_hair(const Look& look, const Pose& pose, const Placement& placement);

// The solid mass below the strands, in head units.
float hair_behind(const Look& look, Vec2 q);
float hair_cap(const Look& look, Vec2 q);

// Lays strands over one row of pixels. Keeps its scratch between calls; one for each thread.
class StrandPainter {
  public:
    explicit StrandPainter(int width) : cover_(static_cast<std::size_t>(width)), hit_(cover_.size()) {}
    void paint(const std::vector<Strand>& strands, int row, std::vector<Stack>& pixels);

  private:
    struct Hit {
        float distance, t, across;
    };
    std::vector<float> cover_;
    std::vector<Hit> hit_;
};

}  // namespace plate
