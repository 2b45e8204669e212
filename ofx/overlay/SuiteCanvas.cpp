#include "host/Host.h"
#include "overlay/Canvas.h"

namespace veloxa::ofx {

namespace {

class SuiteCanvas final : public Canvas {
  public:
    explicit SuiteCanvas(OfxDrawContextHandle context) : context_(context) {}

    void outline(std::span<const OfxPointD> points, const CanvasColour& colour, float width) override {
        suites().draw->setLineWidth(context_, width);
        draw(kOfxDrawPrimitiveLineLoop, points, colour);
    }
    void fill(std::span<const OfxPointD> points, const CanvasColour& colour) override {
        draw(kOfxDrawPrimitivePolygon, points, colour);
    }

  private:
    void draw(OfxDrawPrimitive primitive, std::span<const OfxPointD> points, const CanvasColour& colour) {
        const OfxRGBAColourF paint{colour[0], colour[1], colour[2], 1.0f};
        suites().draw->setColour(context_, &paint);
        suites().draw->draw(context_, primitive, points.data(), static_cast<int>(points.size()));
    }

    OfxDrawContextHandle context_;
};

}  // namespace

std::unique_ptr<Canvas> suite_canvas(OfxDrawContextHandle context) {
    return std::make_unique<SuiteCanvas>(context);
}

}  // namespace veloxa::ofx
