#include "host/TarnVlxImg.h"

#include <cassert>

using namespace Zo::Image;

TarnVlxImg::TarnVlxImg(const GeneralTile& tile)
    : tile_(&tile), width_(tile.box().width()), height_(tile.box().height()) {}

TarnVlxImg::TarnVlxImg(std::int32_t width, std::int32_t height, float* plane1, float* plane2, float* plane3,
                       float* plane4)
    : width_(width), height_(height), planes_{plane1, plane2, plane3, plane4} {}

std::size_t TarnVlxImg::index(std::int32_t x, std::int32_t y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
}

void TarnVlxImg::get_pixel(std::int32_t x, std::int32_t y, float& a, float& b, float& c, float& d) const {
    if (tile_ != nullptr) {
        const std::int32_t tile_x = x + tile_->box().x;
        const std::int32_t tile_y = y + tile_->box().y;
        a = tile_->at(kAlpha, tile_x, tile_y);
        b = tile_->at(kRed, tile_x, tile_y);
        c = tile_->at(kGreen, tile_x, tile_y);
        d = tile_->at(kBlue, tile_x, tile_y);
        return;
    }
    const std::size_t i = index(x, y);
    a = planes_[0][i];
    b = planes_[1][i];
    c = planes_[2][i];
    d = planes_[3][i];
}

void TarnVlxImg::set_pixel(std::int32_t x, std::int32_t y, float a, float b, float c, float d) {
    assert(tile_ == nullptr);
    const std::size_t i = index(x, y);
    planes_[0][i] = a;
    planes_[1][i] = b;
    planes_[2][i] = c;
    planes_[3][i] = d;
}
