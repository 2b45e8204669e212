// A keyer node with a procedural plate on its inputs, all in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ZoImage/Render.h"
#include "ZoImage/RowCache.h"
#include "keyer/VeloxaKeyer.h"
#include "shot/image/Image.h"

namespace bench {

struct Plate {
    std::shared_ptr<const veloxa::Image> fg, cp, bg;
};

// The same pixels for one size in every run. The figure is `copies` times side by side.
Plate make_plate(int width, int height, int copies = 1);

struct Configuration {
    const char* name;
    bool clean_plate;
    void (*set)(KnobStorage&);
};

extern const std::vector<Configuration> kConfigurations;

// Serves a plate's image without a copy, as wide as it is or in narrower strips, one above the other.
class RowSource final : public Zo::Image::Iop {
  public:
    RowSource(std::shared_ptr<const veloxa::Image> image, int width, int height);
    const char* class_name() const override { return "RowSource"; }

  protected:
    void _validate(bool for_real) override;
    void _request(int, int, int, int, Zo::Image::ChannelSet, int) override {}
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    std::shared_ptr<const veloxa::Image> image_;
    Zo::Image::Box box_;
};

class NodeRig {
  public:
    // A frame of width x height, filled with what the plate has; 0 takes the plate's own size.
    NodeRig(const Plate& plate, const Configuration& configuration, int threads, int width = 0,
            int height = 0, const Zo::Image::AbortFlag* abort = nullptr);

    // As when a sequence's next frame arrives: nothing that was computed from the inputs is kept.
    void key_next_frame();
    // Writes to memory that was not written before, from now on, as the program does frame by frame.
    void use_fresh_output() { output_ = veloxa::Image(output_.info); }
    // After a change of the knobs.
    void key_again();

    VeloxaKeyer& node() { return node_; }
    KnobStorage& knobs() { return node_.knob_values(); }
    Zo::Image::Renderer& renderer() { return renderer_; }
    double pixels() const { return static_cast<double>(output_.width() * output_.height()); }
    // Keeps what is computed, up to so many bytes.
    void use_cache(std::size_t budget);
    // The share of the frame that is certain backing.
    double backing_share();
    // Of every bit of the last frame.
    std::uint64_t checksum() const;

  private:
    RowSource fg_, cp_, bg_;
    VeloxaKeyer node_;
    std::unique_ptr<Zo::Image::RowCache> cache_;
    Zo::Image::Renderer renderer_;
    veloxa::Image output_;
};

}  // namespace bench
