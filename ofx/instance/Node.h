// The keyer node with its panel, made by its registration record, which is linked into this module.
#pragma once

#include <memory>

#include "ZoImage/Iop.h"
#include "ZoImage/KnobPanel.h"
#include "parameters/Parameters.h"

namespace veloxa::ofx {

class Node {
  public:
    // Threads and flag are for the node's tools, may be null, and outlive it. Throws Failure when there is no
    // memory.
    explicit Node(Zo::Image::ThreadSource* threads = nullptr, const Zo::Image::AbortFlag* abort = nullptr);

    Zo::Image::Iop& image() const { return *image_; }
    Zo::Image::KnobPanel& panel() { return panel_; }
    const Zo::Image::KnobPanel& panel() const { return panel_; }
    const ParameterList& list() const { return list_; }
    // The names of the inner operators that make rows, in the node's order.
    std::vector<std::string> stages() const;
    // One of them, by its place in that order; null where there are fewer.
    Zo::Image::Iop* stage(std::size_t n) const;

  private:
    std::unique_ptr<Zo::Image::Op> op_;
    Zo::Image::Iop* image_;
    Zo::Image::KnobPanel panel_;
    ParameterList list_;
};

}  // namespace veloxa::ofx
