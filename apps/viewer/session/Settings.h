// The values of all knobs of a node at one time, to go back to, to hand to other threads and to compare.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ZoImage/Hash.h"
#include "ZoImage/KnobPanel.h"
#include "ZoImage/ToolReport.h"

namespace veloxa::viewer {

// Immutable and cheap to copy; any thread. Goes with the panels of one class of node, which are alike.
class Settings {
  public:
    Settings() = default;  // of no panel: gives a panel nothing
    // The panel's values now; links are left out. What did not change since `before` is shared with it.
    explicit Settings(const Zo::Image::KnobPanel& panel, const Settings& before = {});

    bool empty() const { return values_ == nullptr; }
    // Gives the panel these values and tells its operator of those that differ. The panel's thread.
    void give(Zo::Image::KnobPanel& panel) const;
    // With what changed from `before` to `after`, and everything else as it is here.
    Settings changed(const Settings& before, const Settings& after) const;
    // What became of the knobs since, by their names; those that hold lists are left out. Of a panel of the
    // same class.
    std::vector<Zo::Image::KnobChange> changes_since(const Settings& before,
                                                     const Zo::Image::KnobPanel& panel) const;
    void append_to(Zo::Image::Hash& hash) const;

    friend bool operator==(const Settings& a, const Settings& b);

  private:
    using Value = std::shared_ptr<const std::string>;
    std::shared_ptr<const std::vector<Value>> values_;  // of the knobs that take one, in panel order
};

}  // namespace veloxa::viewer
