#include "shot/farm/Chunk.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

#include "shot/Errors.h"

namespace {

using namespace veloxa;

TEST(Chunk, PartsCoverEachFrameOnceAndDifferByOneAtMost) {
    for (const char* const text : {"1-48", "-7-7x3", "1001-1001", "1-240x7"}) {
        const FrameRange frames = parse_frames(text);
        for (const int count : {1, 2, 5, 48, 300}) {
            std::map<int, int> made;
            int least = frames.count();
            int most = 0;
            int last = frames.first - frames.step;
            int index = 0;
            for (int n = 0; n < count; ++n) {
                const auto part = part_of(frames, {n, count});
                least = std::min(least, part ? part->count() : 0);
                most = std::max(most, part ? part->count() : 0);
                for (int i = 0; part && i < part->count(); ++i) {
                    EXPECT_EQ(part->at(i), last + frames.step) << text << ' ' << n << '/' << count;
                    EXPECT_EQ(chunk_of(frames, index++, count), n) << text << ' ' << count;
                    last = part->at(i);
                }
            }
            EXPECT_EQ(last, frames.at(frames.count() - 1)) << text << ' ' << count;
            EXPECT_LE(most - least, 1) << text << ' ' << count;
        }
    }
}

TEST(Chunk, IsReadOrTakenFromTheSchedulersEnvironment) {
    EXPECT_EQ(parse_chunk("3/24").index, 3);
    EXPECT_EQ(parse_chunk("3/24").count, 24);
    for (const char* const wrong : {"", "3", "24/24", "-1/4", "1/0", "1/4x", "a/b", "1/99999999999"})
        EXPECT_THROW(parse_chunk(wrong), UsageError) << wrong;

    const auto task = [](const char* id, const char* min, const char* count, const char* step) {
        ::setenv("SLURM_ARRAY_TASK_ID", id, 1);
        ::setenv("SLURM_ARRAY_TASK_MIN", min, 1);
        ::setenv("SLURM_ARRAY_TASK_COUNT", count, 1);
        ::setenv("SLURM_ARRAY_TASK_STEP", step, 1);
        return parse_chunk("slurm");
    };
    EXPECT_EQ(task("7", "4", "8", "1").index, 3);
    EXPECT_EQ(task("10", "4", "4", "3").index, 2);
    EXPECT_THROW(task("7", "3", "2", "1"), UsageError) << "--array=3,7";
    ::unsetenv("SLURM_ARRAY_TASK_ID");
    EXPECT_THROW(parse_chunk("slurm"), UsageError);
}

}  // namespace
