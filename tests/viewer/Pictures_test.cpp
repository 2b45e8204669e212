// Where pictures wait to be seen again, and where their memory does.
#include <gmock/gmock.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "render/PictureCache.h"
#include "render/PlanePool.h"

namespace test {
namespace {

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;

Info info_of(int width, int height) {
    Info info;
    info.box = info.format.box = {0, 0, width, height};
    info.channels = kMaskRgba;
    return info;
}

Hash hash(std::int32_t n) {
    Hash made;
    made.append(n);
    return made;
}

TEST(PictureCache, KeepsOfEachFrameWhatWasUsedLastWithinItsBytes) {
    const auto picture = std::make_shared<const Image>(info_of(10, 10));
    constexpr std::size_t kBytes = 10 * 10 * 4 * sizeof(float);
    PictureCache cache(20 * kBytes);
    cache.keep(hash(-1), hash(2), picture);
    for (int n = 0; n < 100; ++n) {
        cache.keep(hash(n), hash(1), picture);
        ASSERT_TRUE(cache.find(hash(0)));
    }
    // Another frame's is there, what was looked for is, and of the others those that came last.
    EXPECT_TRUE(cache.has(hash(-1)));
    EXPECT_TRUE(cache.has(hash(0)));
    EXPECT_TRUE(cache.has(hash(101 - PictureCache::kOfOneFrame)));
    EXPECT_FALSE(cache.has(hash(100 - PictureCache::kOfOneFrame)));
    // The bytes of 20, of which it is not one of the first.
    for (int n = 0; n < 20; ++n) cache.keep(hash(1000 + n), hash(1000 + n), picture);
    EXPECT_FALSE(cache.has(hash(-1)));
    EXPECT_TRUE(cache.has(hash(1000)));
}

TEST(PlanePool, GivesThePlanesOfPicturesThatAreGone) {
    std::optional<PlanePool> pool(std::in_place);
    std::optional<Image> first = pool->image(info_of(64, 48));
    Image second = pool->image(info_of(64, 48));
    const float* const left = first->plane(kAlpha).get();
    for (const Channel c : kMaskRgba) {
        for (const Channel other : kMaskRgba) EXPECT_NE(first->plane(c), second.plane(other));
    }
    first.reset();
    const Image larger = pool->image(info_of(65, 48));
    Image third = pool->image(info_of(64, 48));
    for (const Channel c : kMaskRgba) EXPECT_NE(larger.plane(c).get(), left);
    EXPECT_EQ(std::ranges::count_if(third.planes, [&](const Plane& plane) { return plane.get() == left; }),
              1);
    pool.reset();
    third.line(kAlpha, 47)[63] = 1.0f;
}

}  // namespace
}  // namespace test
