// The forms that kernels come in, and which one this process runs.
//
// A kernel's loop is compiled once for every width of the processor's vectors; all forms give the same bits.
// The widest that the processor has is chosen when the keyer is loaded. The environment variable VELOXA_LANES
// (scalar, sse2, avx2, avx512) asks for a lower one.
//
// The emulated form works on packs of the greatest width with what any processor has. Only test programs link
// it, so that what goes wrong with wide packs alone shows on every machine. It is never chosen by itself.
#pragma once

#include <array>

enum class Lanes { kScalar, kSse2, kAvx2, kAvx512, kEmulated };

inline constexpr std::array kAllLanes{Lanes::kScalar, Lanes::kSse2, Lanes::kAvx2, Lanes::kAvx512,
                                      Lanes::kEmulated};

// "scalar", "sse2", "avx2", "avx512", "emulated".
const char* name_of(Lanes lanes);

// Whether this program has the form and this processor can run it.
bool supported(Lanes lanes);

// Safe from any thread.
Lanes lanes_in_use();

// Chooses another supported form, for tests and benchmarks. Not while a render runs.
void use_lanes(Lanes lanes);

// Programs that link the emulated form define it.
[[gnu::weak]] extern const bool emulated_form_is_linked;
