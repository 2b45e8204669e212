#include "framework/BlurKernel.h"
#include "support/Kernel.h"
#include "support/PlainCounts.h"

namespace bench {

std::vector<Kernel> framework_kernels() {
    Material& m = material();
    static const auto lines = m.column_lines();
    return {{"blur_add, 5 lines", plain::fold(5, plain::kSum) + plain::floats(0, plain::kOneNan, 0),
             [&m] { blur_add(lines, m.out[0].data(), kSpan); }},
            // A scale that leaves the values what they are, run after run.
            {"blur_finish", plain::kBlurFinish, [&m] { blur_finish(1.0f, m.out[0].data(), kSpan); }}};
}

}  // namespace bench
