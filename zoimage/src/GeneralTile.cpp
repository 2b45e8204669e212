#include "ZoImage/GeneralTile.h"

#include <algorithm>

#include "RowPath.h"
#include "ZoImage/Iop.h"
#include "ZoImage/Lock.h"
#include "ZoImage/Render.h"

namespace Zo::Image {

namespace {

constexpr int kGrain = 16;  // rows that a helping thread takes at a time

// Row lists that tiles of this thread use again, so that a tile allocates nothing.
std::vector<std::vector<Row>>& spare_rows() {
    thread_local std::vector<std::vector<Row>> spare;
    return spare;
}

}  // namespace

GeneralTile::GeneralTile(Iop& source, const Box& box, ChannelSet channels) : box_(box) {
    if (!spare_rows().empty()) {
        rows_ = std::move(spare_rows().back());
        spare_rows().pop_back();
    }
    rows_.clear();
    rows_.reserve(static_cast<std::size_t>(std::max(0, box.height())));
    for (int y = box.y; y < box.t; ++y) {
        rows_.emplace_back(box.x, box.r).get(source, y, channels);
    }
    valid_ = !source.aborted();
}

GeneralTile::~GeneralTile() {
    rows_.clear();
    spare_rows().push_back(std::move(rows_));
}

RawGeneralTile::RawGeneralTile(Iop& source, const Box& box, ChannelSet channels, Lock* helpers) : box_(box) {
    if (box.empty()) return;
    const auto width = static_cast<std::size_t>(box.width());
    for (const Channel c : channels) {
        planes_[static_cast<std::size_t>(c)].resize(width * static_cast<std::size_t>(box.height()));
    }
    const auto keep = [&](int y, const Row& row) {
        for (const Channel c : channels) {
            float* line =
                planes_[static_cast<std::size_t>(c)].data() + static_cast<std::size_t>(y - box.y) * width;
            std::copy_n(row[c], width, line);
        }
    };
    const auto fetch = [&](int begin, int end) {
        for (int y = begin; y < end && !source.aborted(); ++y) {
            Row row(box.x, box.r);
            row.get(source, y, channels);
            keep(y, row);
        }
    };
    if (RowPath::current() == nullptr) {
        valid_ = Renderer(1).render(source, box, channels, keep);
    } else if (helpers != nullptr) {
        helpers->parallel_for(box.y, box.t, kGrain, fetch);
        valid_ = !source.aborted();
    } else {
        fetch(box.y, box.t);
        valid_ = !source.aborted();
    }
}

const float* RawGeneralTile::line(Channel c, int y) const {
    const std::vector<float>& plane = planes_[static_cast<std::size_t>(c)];
    if (plane.empty()) return nullptr;
    return plane.data() + static_cast<std::size_t>(y - box_.y) * static_cast<std::size_t>(box_.width());
}

}  // namespace Zo::Image
