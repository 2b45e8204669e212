#include "lanes/Lanes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

Lanes widest() {
    return *std::find_if(kAllLanes.rbegin(), kAllLanes.rend(),
                         [](Lanes lanes) { return lanes != Lanes::kEmulated && supported(lanes); });
}

Lanes chosen() {
    const Lanes best = widest();
    const char* wish = std::getenv("VELOXA_LANES");
    if (wish == nullptr || *wish == '\0') return best;
    for (const Lanes lanes : kAllLanes) {
        if (std::string_view(wish) != name_of(lanes)) continue;
        if (supported(lanes)) return lanes;
        std::fprintf(stderr, "veloxa: VELOXA_LANES: %s cannot run here; %s is used\n", wish, name_of(best));
        return best;
    }
    std::fprintf(stderr, "veloxa: VELOXA_LANES: \"%s\" is none of scalar, sse2, avx2, avx512; %s is used\n",
                 wish, name_of(best));
    return best;
}

Lanes in_use = chosen();

}  // namespace

const char* name_of(Lanes lanes) {
    static constexpr std::array kNames{"scalar", "sse2", "avx2", "avx512", "emulated"};
    return kNames[static_cast<std::size_t>(lanes)];
}

bool supported(Lanes lanes) {
    if (lanes == Lanes::kEmulated) return &emulated_form_is_linked != nullptr;
#ifdef __x86_64__
    if (lanes == Lanes::kAvx2) return __builtin_cpu_supports("x86-64-v3") != 0;
    if (lanes == Lanes::kAvx512) return __builtin_cpu_supports("x86-64-v4") != 0;
    return true;
#else
    return lanes == Lanes::kScalar;
#endif
}

Lanes lanes_in_use() {
    return in_use;
}

void use_lanes(Lanes lanes) {
    in_use = lanes;
}
