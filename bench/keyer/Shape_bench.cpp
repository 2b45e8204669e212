// Whether a pixel of a very large frame, and of a very narrow one, costs what a pixel of a usual one does.
#include <string>

#include "keyer/NodeRig.h"
#include "support/Table.h"

namespace bench {

namespace {

// Cut from one plate, so that the same pixels are keyed.
constexpr int kWidth = 4096;
constexpr int kHeight = 2160;

struct Shape {
    int width, height, copies;  // copies of the plate side by side
};
constexpr Shape kShapes[]{{kWidth, kHeight, 1}, {64, 100000, 1}, {3 * kWidth, 8192, 3}};

double nanoseconds_a_pixel(const Configuration& configuration, const Shape& shape) {
    static const Plate usual = make_plate(kWidth, kHeight);
    static const Plate wide = make_plate(kWidth, kHeight, 3);
    NodeRig rig(shape.copies == 1 ? usual : wide, configuration, 2, shape.width, shape.height);
    return time_calls([&] { rig.key_next_frame(); }, 1, 0.5).least / rig.pixels() * 1e9;
}

void time_shape(benchmark::State& state, const Configuration& configuration, const Shape& shape) {
    for (auto _ : state) {
        const double usual = nanoseconds_a_pixel(configuration, kShapes[0]);
        const double pixel = nanoseconds_a_pixel(configuration, shape);
        state.counters["ns a pixel"] = pixel;
        state.counters["4096 x 2160"] = usual;
        state.counters["ratio"] = pixel / usual;
    }
}

void register_benchmarks() {
    for (const Configuration& configuration : kConfigurations) {
        const std::string name = configuration.name;
        if (name != "default" && name != "shadows") continue;
        for (const Shape& shape : kShapes) {
            if (&shape == &kShapes[0]) continue;
            const std::string size = std::to_string(shape.width) + " x " + std::to_string(shape.height);
            benchmark::RegisterBenchmark((name + ", " + size).c_str(), time_shape, configuration, shape)
                ->Iterations(1);
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    return bench::run_table(argc, argv, "shape, 2 threads",
                            {{"ns a pixel", 2}, {"4096 x 2160", 2}, {"ratio", 2}});
}
