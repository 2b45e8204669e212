#include "ZoImage/GeneralTile.h"

#include <algorithm>
#include <thread>

#include "BufferPool.h"
#include "RowPath.h"
#include "RowRanges.h"
#include "ZoImage/Iop.h"
#include "ZoImage/Lock.h"
#include "ZoImage/Render.h"

namespace Zo::Image {

namespace {

// As in a render, threads keep to ranges of rows: at a seam of two, rows upstream are made twice.
constexpr int kLeastRange = 64;

}  // namespace

GeneralTile::GeneralTile(Iop& source, const Box& box, ChannelSet channels)
    : box_(box), rows_(BufferPool::take_list()) {
    rows_.reserve(static_cast<std::size_t>(std::max(0, box.height())));
    for (int y = box.y; y < box.t; ++y) {
        rows_.emplace_back(box.x, box.r).get(source, y, channels);
    }
    valid_ = !source.aborted();
}

GeneralTile::~GeneralTile() {
    BufferPool::give_back(std::move(rows_));
}

bool fetch_rows(std::span<const RowSource> sources, const Box& box, Lock* helpers, const RowSink& sink) {
    if (box.empty() || sources.empty()) return true;
    if (RowPath::current() == nullptr) {
        Renderer renderer(1);
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const auto keep = [&](int y, const Row& row) { sink(i, y, row); };
            if (!renderer.render(*sources[i].image, box, sources[i].channels, keep)) return false;
        }
        return true;
    }
    const Iop& any = *sources[0].image;
    const int processors = helpers == nullptr ? 1 : static_cast<int>(std::thread::hardware_concurrency());
    const int workers = std::clamp(processors, 1, std::max(1, box.height() / kLeastRange));
    RowRanges ranges(box.y, box.t, workers, kLeastRange);
    const auto fetch_row = [&](int y) {
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if (any.aborted()) return false;
            Row row(box.x, box.r);
            row.get(*sources[i].image, y, sources[i].channels);
            sink(i, y, row);
        }
        return true;
    };
    const auto fetch = [&](int begin, int end) {
        for (int worker = begin; worker < end; ++worker) ranges.walk(worker, fetch_row);
    };
    if (helpers != nullptr) {
        helpers->parallel_for(0, workers, 1, fetch);
    } else {
        fetch(0, workers);
    }
    return !any.aborted();
}

}  // namespace Zo::Image
