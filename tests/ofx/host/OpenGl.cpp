// The few functions of OpenGL that an overlay may call, under the names by which it looks them up.
#include "ofx/host/Interact.h"

namespace {

using namespace ofxtest;

std::array<float, 3> colour{};

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

void glPushAttrib(unsigned) {
    if (may_draw()) ++drawing.attributes_pushed;
}
void glPopAttrib() {
    if (may_draw()) --drawing.attributes_pushed;
}
void glDisable(unsigned) {}
void glLineWidth(float) {}
void glColor3f(float r, float g, float b) {
    colour = {r, g, b};
}
void glBegin(unsigned primitive) {
    constexpr unsigned kPolygon = 9;
    if (may_draw()) drawing.shapes.push_back({primitive == kPolygon, colour, {}});
}
void glVertex2d(double x, double y) {
    if (may_draw()) drawing.shapes.back().points.push_back({x, y});
}
void glEnd() {}
}
#pragma GCC visibility pop
