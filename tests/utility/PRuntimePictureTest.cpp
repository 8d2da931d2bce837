#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimePicture.h"

#include <QColor>
#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

using pallix::test::virtualSlot;

namespace {

class PictureTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }
    PRuntimePicture picture;
};

// A distinct colour for each index below 65536.
QRgb colourOf(int index) {
    return qRgb(index & 0xFF, (index >> 8) & 0xFF, 0x80);
}

// Every column (or row) in a colour of its own.
QPixmap stripes(int width, int height, bool columns) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, colourOf(columns ? x : y));
        }
    }
    return QPixmap::fromImage(image);
}

} // namespace

TEST(PictureSlots, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimePicture::middle), 3u);
}

TEST_F(PictureTest, RootHandsOutTheComponent) {
    PRuntimePicture* fromRoot = PRuntime::getInstance()->picture();
    ASSERT_NE(fromRoot, nullptr);
    EXPECT_EQ(fromRoot->middle(stripes(40, 10, true), 10, 10).size(), QSize(10, 10));
}

TEST_F(PictureTest, WideSourceIsCutFromTheMiddleOfTheHeightFittedPicture) {
    // Width-fitted: 100 x 25, too low; height-fitted: 400 x 100, cut at x (400 - 100) / 2.
    const QPixmap source = stripes(400, 100, true);
    const QImage result = picture.middle(source, 100, 100).toImage();
    ASSERT_EQ(result.size(), QSize(100, 100));
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            ASSERT_EQ(result.pixel(x, y), colourOf(150 + x)) << x << ", " << y;
        }
    }
}

TEST_F(PictureTest, TallSourceIsCutFromTheMiddleOfTheWidthFittedPicture) {
    const QPixmap source = stripes(100, 400, false);
    const QImage result = picture.middle(source, 100, 100).toImage();
    ASSERT_EQ(result.size(), QSize(100, 100));
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            ASSERT_EQ(result.pixel(x, y), colourOf(150 + y)) << x << ", " << y;
        }
    }
}

TEST_F(PictureTest, HalvingDropsTheFraction) {
    // (401 - 100) / 2 = 150 and (305 - 100) / 2 = 102.
    const QImage wide = picture.middle(stripes(401, 100, true), 100, 100).toImage();
    ASSERT_EQ(wide.size(), QSize(100, 100));
    EXPECT_EQ(wide.pixel(0, 0), colourOf(150));
    EXPECT_EQ(wide.pixel(99, 99), colourOf(249));
    const QImage tall = picture.middle(stripes(100, 305, false), 100, 100).toImage();
    ASSERT_EQ(tall.size(), QSize(100, 100));
    EXPECT_EQ(tall.pixel(0, 0), colourOf(102));
    EXPECT_EQ(tall.pixel(99, 99), colourOf(201));
}

TEST_F(PictureTest, SameShapeIsTheScaledPicture) {
    const QPixmap source = stripes(200, 100, true);
    const QImage result = picture.middle(source, 200, 100).toImage();
    EXPECT_EQ(result, source.toImage().convertToFormat(result.format()));
}

TEST_F(PictureTest, WidthFittedCandidateWinsWhenBothWouldFit) {
    // 300 x 200 into 200 x 133: the width-fitted picture is 200 x 134, the height-fitted one
    // 200 x 133; both could fill the box, the first is taken and cut at y (134 - 133) / 2.
    const QPixmap source = stripes(300, 200, false);
    const QPixmap byWidth = source.scaledToWidth(200, Qt::SmoothTransformation);
    const QPixmap byHeight = source.scaledToHeight(133, Qt::SmoothTransformation);
    ASSERT_GE(byWidth.height(), 133);
    ASSERT_GE(byHeight.width(), 200);
    const QImage expected = byWidth.copy(0, (byWidth.height() - 133) / 2, 200, 133).toImage();
    const QImage other = byHeight.copy((byHeight.width() - 200) / 2, 0, 200, 133).toImage();
    ASSERT_NE(expected, other);

    const QImage result = picture.middle(source, 200, 133).toImage();
    EXPECT_EQ(result, expected);
}

TEST_F(PictureTest, UpscalingCoversTheBox) {
    const QPixmap result = picture.middle(stripes(20, 10, true), 100, 100);
    EXPECT_EQ(result.size(), QSize(100, 100));
}

TEST_F(PictureTest, NullSourceGivesANullPicture) {
    EXPECT_TRUE(picture.middle(QPixmap(), 100, 100).isNull());
}
