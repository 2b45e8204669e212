# Flags that every target of the project is built with.
#
# No contraction: a fused multiply-add rounds once where the kernels round twice, so results would depend
# on the instruction set. The two -fno flags change no result; they let loops vectorise.
option(VELOXA_WERROR "Take warnings for errors" ON)

add_library(veloxa_flags INTERFACE)
target_compile_options(veloxa_flags INTERFACE
  -Wall -Wextra -Wconversion -Wshadow $<$<BOOL:${VELOXA_WERROR}>:-Werror>
  -ffp-contract=off -fno-trapping-math -fno-math-errno)

# GCC 12 takes the inlined operator+ of strings for overlapping copies.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(veloxa_flags INTERFACE -Wno-restrict)
endif()
