#include "tools/ToolNode.h"

#include "ZoImage/KnobValues.h"
#include "tools/AutoSetup.h"
#include "tools/ToolRun.h"

using namespace Zo::Image;

namespace {

// Puts back what a tool leaves half done.
class Attempt {
  public:
    explicit Attempt(const ToolNode& node)
        : node_(node), values_(node.panel.valued()), session_(node.session) {
        session_.reports.clear();
    }
    ~Attempt() {
        if (done_) return;
        values_.restore();
        node_.session = std::move(session_);
        node_.image.invalidate();
    }
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    void done() { done_ = true; }

  private:
    const ToolNode& node_;
    KnobValues values_;
    ToolSession session_;
    bool done_ = false;
};

}  // namespace

void use_tool(const ToolNode& node, Tool tool) try {
    Attempt attempt(node);
    std::vector<ToolReport> reports;
    if (tool == Tool::kSetUp) {
        reports = set_up(node);
    } else {
        reports.push_back(ToolRun(node).run_and_explain(tool, StrokeAreas(node.panel.tool(tool)->stroke())));
    }
    if (node.abort() != nullptr && node.abort()->raised()) return;
    node.session.reports = std::move(reports);
    attempt.done();
} catch (const GivenUp&) {
}
