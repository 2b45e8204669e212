#include "shot/sequence/KeyPlan.h"

#include <utility>

#include "shot/files/AtomicFile.h"
#include "shot/movie/StreamWriter.h"

namespace veloxa {

std::vector<std::string> files_of(const KeyPlan& plan, int frame) {
    std::vector<std::string> files;
    for (const KeyOutput& output : plan.outputs) {
        if (!output.file.is_stream()) files.push_back(output.file.at(frame));
    }
    return files;
}

std::vector<std::string> files_of(const KeyPlan& plan) {
    std::vector<std::string> files;
    for (int n = 0; n < plan.frames.count(); ++n) {
        for (std::string& file : files_of(plan, plan.frames.at(n))) files.push_back(std::move(file));
    }
    return files;
}

WriteOptions KeyPlan::how_to_write(const KeyOutput& output) const {
    WriteOptions how = write;
    how.layers = how.layers && output.picture != Picture::kMatte;
    return how;
}

void check_outputs(const KeyPlan& plan, const FrameLoader::Names& inputs) {
    const int known = plan.frames.open ? 1 : plan.frames.count();
    for (int n = 0; n < known; ++n) {
        for (const KeyOutput& output : plan.outputs) {
            if (output.file.is_stream()) continue;
            const std::string file = output.file.at(plan.frames.at(n));
            AtomicFile::check(file, plan.write.overwrite);
            refuse_input(file, inputs, plan.frames.at(n));
        }
    }
    for (const KeyOutput& output : plan.outputs) {
        if (output.file.is_stream()) {
            check_stream("standard output", plan.how_to_write(output));
        } else {
            check_writable(output.file.at(plan.frames.first), plan.how_to_write(output));
        }
    }
}

}  // namespace veloxa
