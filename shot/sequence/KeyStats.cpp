#include "shot/sequence/KeyStats.h"

#include <algorithm>

namespace veloxa {

using namespace Zo::Image;

void KeyStats::add(const std::vector<OpStats>& frame) {
    for (const OpStats& one : frame) {
        const auto same =
            std::find_if(ops.begin(), ops.end(), [&](const OpStats& o) { return o.op == one.op; });
        if (same == ops.end()) {
            ops.push_back(one);
        } else {
            same->rows += one.rows;
            same->time += one.time;
        }
    }
}

}  // namespace veloxa
