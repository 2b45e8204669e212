// Four floats at once, in the 128-bit vectors that every form has; for turning rows into columns.
#pragma once

using Quad [[gnu::vector_size(16)]] = float;

[[gnu::always_inline]] inline Quad load_quad(const float* from) {
    Quad result;
    __builtin_memcpy(&result, from, sizeof result);
    return result;
}
[[gnu::always_inline]] inline void store_quad(float* to, Quad v) {
    __builtin_memcpy(to, &v, sizeof v);
}
[[gnu::always_inline]] inline void transpose(Quad (&v)[4]) {
    const Quad a = __builtin_shufflevector(v[0], v[1], 0, 4, 1, 5);
    const Quad b = __builtin_shufflevector(v[2], v[3], 0, 4, 1, 5);
    const Quad c = __builtin_shufflevector(v[0], v[1], 2, 6, 3, 7);
    const Quad d = __builtin_shufflevector(v[2], v[3], 2, 6, 3, 7);
    v[0] = __builtin_shufflevector(a, b, 0, 1, 4, 5);
    v[1] = __builtin_shufflevector(a, b, 2, 3, 6, 7);
    v[2] = __builtin_shufflevector(c, d, 0, 1, 4, 5);
    v[3] = __builtin_shufflevector(c, d, 2, 3, 6, 7);
}
