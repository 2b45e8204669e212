# Flags that every target of the project is built with.
#
# No contraction: a fused multiply-add rounds once where the kernels round twice, so results would depend
# on the instruction set. The two -fno flags change no result; they let loops vectorise.
add_library(veloxa_flags INTERFACE)
target_compile_options(veloxa_flags INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  -ffp-contract=off -fno-trapping-math -fno-math-errno)
