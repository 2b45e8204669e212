// Hosts without the draw suite have an OpenGL context of the old kind current when they ask to draw. Its
// functions are looked up when they are needed: to link with them would bring a library of graphics into
// every renderer that loads this module.
#include <dlfcn.h>

#include "overlay/Canvas.h"

namespace veloxa::ofx {

namespace {

// The interface's numbers.
constexpr unsigned kLineLoop = 0x0002, kPolygon = 0x0009;
constexpr unsigned kCurrentBit = 0x0001, kLineBit = 0x0004, kEnableBit = 0x2000;
constexpr unsigned kDepthTest = 0x0B71, kLighting = 0x0B50, kTexture2D = 0x0DE1;

struct OpenGl {
    void (*push_attributes)(unsigned);
    void (*pop_attributes)();
    void (*disable)(unsigned);
    void (*line_width)(float);
    void (*colour)(float, float, float);
    void (*begin)(unsigned);
    void (*vertex)(double, double);
    void (*end)();
};

// In the program or the libraries that it loaded for all; else in a library that is in the process for
// somebody alone, as a host's toolkit may have it.
void* symbol(const char* name) {
    if (void* const found = dlsym(RTLD_DEFAULT, name)) return found;
    for (const char* const library : {"libGL.so.1", "libOpenGL.so.0"}) {
        void* const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
        if (handle == nullptr) continue;
        void* const found = dlsym(handle, name);
        dlclose(handle);
        if (found != nullptr) return found;
    }
    return nullptr;
}

template <class Function>
bool find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(symbol(name));
    return function != nullptr;
}

class OpenGlCanvas final : public Canvas {
  public:
    explicit OpenGlCanvas(const OpenGl& gl) : gl_(gl) {
        gl_.push_attributes(kCurrentBit | kLineBit | kEnableBit);
        for (const unsigned one : {kDepthTest, kLighting, kTexture2D}) gl_.disable(one);
    }
    ~OpenGlCanvas() override { gl_.pop_attributes(); }

    void outline(std::span<const OfxPointD> points, const CanvasColour& colour, float width) override {
        gl_.line_width(width);
        draw(kLineLoop, points, colour);
    }
    void fill(std::span<const OfxPointD> points, const CanvasColour& colour) override {
        draw(kPolygon, points, colour);
    }

  private:
    void draw(unsigned primitive, std::span<const OfxPointD> points, const CanvasColour& colour) {
        gl_.colour(colour[0], colour[1], colour[2]);
        gl_.begin(primitive);
        for (const OfxPointD& point : points) gl_.vertex(point.x, point.y);
        gl_.end();
    }

    OpenGl gl_;
};

}  // namespace

std::unique_ptr<Canvas> opengl_canvas() {
    OpenGl gl{};
    const bool all = find(gl.push_attributes, "glPushAttrib") && find(gl.pop_attributes, "glPopAttrib") &&
                     find(gl.disable, "glDisable") && find(gl.line_width, "glLineWidth") &&
                     find(gl.colour, "glColor3f") && find(gl.begin, "glBegin") &&
                     find(gl.vertex, "glVertex2d") && find(gl.end, "glEnd");
    return all ? std::make_unique<OpenGlCanvas>(gl) : nullptr;
}

}  // namespace veloxa::ofx
