// Film correction: the red layer of film follows sharp transitions more slowly than green and blue, which
// leaves a smeared red edge. Colour is shifted by the distance of red from its extremes in the 3 by 3 pixels
// around.
//
// Input 0: the image, red, green, blue on the working scale. Input 1: the matte, alpha; only pixels where it
// is exactly 0 are corrected. Output: the image, its colour corrected; the box is the image's.
// Reads and hashes "Film Strength " and the three "Film Correnction ". Rows may be made on any thread.
#pragma once

#include "framework/VlxFilter_t.h"
#include "stages/FilmKernel.h"

// Red of input 0; its local minimum along the row goes to red, its maximum to green.
class VlxFilmCorrectionH final : public VlxBaseFilter {
  public:
    using VlxBaseFilter::VlxBaseFilter;
    bool horizontal() const override { return true; }

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};

// Input 0: the row pass. Input 1: the image. Input 2: the matte. Makes the corrected colour.
class VlxFilmCorrectionV final : public VlxBaseFilter {
  public:
    explicit VlxFilmCorrectionV(const Zo::Image::NodeContext& context) : VlxBaseFilter(context) { inputs(3); }
    bool horizontal() const override { return false; }

    void set_params(const FilmParams& params) { params_ = params; }

  protected:
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    FilmParams params_;
};

class VlxFilmCorrection final : public VlxFilter_t<VlxFilmCorrectionH, VlxFilmCorrectionV> {
  public:
    VlxFilmCorrection(const NodeContext& context, const ControlBlock* controls)
        : VlxFilter_t(context, controls,
                      {.class_name = "VlxFilmCorrection",
                       .inputs = {{kMaskRgb}, {kMaskAlpha}},
                       .hashed = {controls::kFilmCorrectionRed, controls::kFilmCorrectionGreen,
                                  controls::kFilmCorrectionBlue, controls::kFilmStrength}}) {}

    void configure() override;
    Zo::Image::ChannelSet kept_channels() const override { return Zo::Image::kMaskRgb; }

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
