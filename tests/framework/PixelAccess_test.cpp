// Four-plane images and row cursors.
#include <gtest/gtest.h>

#include "host/TarnPixelIterator.h"
#include "host/TarnVlxImg.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

using Pixel = std::array<float, 4>;

Pixel get(const VlxImg& image, int x, int y) {
    Pixel p{};
    image.get_pixel(x, y, p[0], p[1], p[2], p[3]);
    return p;
}

TEST(TarnVlxImg, OverATileGivesAlphaFirstCountedFromItsCorner) {
    test::FunctionSource source({0, 0, 20, 20}, kMaskRgba, [](Channel c, int x, int y) {
        return static_cast<float>(c * 10000 + y * 100 + x);
    });
    source.validate(true);
    const GeneralTile tile(source, {5, 7, 8, 9}, kMaskRgba);
    const TarnVlxImg image(tile);
    EXPECT_EQ(image.width(), 3);
    EXPECT_EQ(image.height(), 2);
    EXPECT_EQ(get(image, 2, 1), (Pixel{40807, 10807, 20807, 30807}));
}

TEST(TarnVlxImg, OverPlanesReadsAndWritesRowMajor) {
    std::array<std::vector<float>, 4> planes;
    for (auto& plane : planes) plane.assign(6, 0.0f);
    TarnVlxImg image(3, 2, planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data());
    image.set_pixel(1, 1, 1, 2, 3, 4);
    for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(planes[k][4], static_cast<float>(k + 1));
    EXPECT_EQ(get(image, 1, 1), (Pixel{1, 2, 3, 4}));
    EXPECT_EQ(get(image, 2, 1), (Pixel{}));
}

class TarnPixelIteratorTest : public testing::Test {
  protected:
    TarnPixelIteratorTest() {
        for (const Channel c : kMaskRgba) {
            for (int i = 0; i < 4; ++i) row.overwrite(c)[i] = static_cast<float>(c * 10 + i);
        }
    }
    Row row{-2, 2};  // columns -2 to 1
};

TEST_F(TarnPixelIteratorTest, WalksColumnsOfTheRow) {
    TarnPixelIterator cursor(row, true);
    EXPECT_EQ(cursor.get(0), 12.0f);  // starts at column 0
    cursor.set_position(-2, 9);
    EXPECT_EQ(cursor.get(3), 40.0f);
    cursor.next_pixel();
    EXPECT_EQ(cursor.get(1), 21.0f);
    cursor.set_row(5);
    EXPECT_EQ(cursor.get(2), 32.0f);
    cursor.set(2, 99.0f);
    EXPECT_EQ(row[kBlue][2], 32.0f) << "written through a read-only cursor";
}

TEST_F(TarnPixelIteratorTest, BindsOnlyTheGivenChannels) {
    TarnPixelIterator cursor(row, kMaskAlpha, false);
    cursor.set_position(1, 0);
    cursor.set(3, 7.0f);
    cursor.set(0, 7.0f);
    EXPECT_EQ(cursor.get(3), 7.0f);
    EXPECT_EQ(cursor.get(0), 0.0f);
    EXPECT_EQ(row[kAlpha][3], 7.0f);
    EXPECT_EQ(row[kRed][3], 13.0f);
}

TEST_F(TarnPixelIteratorTest, NextRowOnlySaysThatItIsNotSupported) {
    TarnPixelIterator cursor(row, true);
    testing::internal::CaptureStdout();
    cursor.next_row();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "TarnPixelIterator::nextRow\n");
    EXPECT_EQ(cursor.get(0), 12.0f);
}

}  // namespace
