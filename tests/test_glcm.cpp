// Grey-level co-occurrence matrices and their texture measures.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

#include "GLCM/GLCM.h"

namespace {

// Quantised 4 x 4 scene; the window around (1, 1) at size 3 is the top-left 3 x 3:
//   0 0 1 | 2
//   1 2 3 | 0
//   3 3 2 | 1
//   0 1 2   3
cv::Mat Scene()
{
    return (cv::Mat_<uchar>(4, 4) << 0, 0, 1, 2, 1, 2, 3, 0, 3, 3, 2, 1, 0, 1, 2, 3);
}

struct Count {
    int first;
    int second;
    int count;
};

struct GlcmRow {
    GrayDirection direction;
    std::vector<Count> counts;
    int total;
    const char* why;
};

} // namespace

TEST(Glcm, CountsEachDirectionOfTheWindowAtEveryLevelCount)
{
    const std::vector<GlcmRow> rows = {
        {GRAY_VERTICAL, {{0, 1, 1}, {0, 2, 1}, {1, 3, 2}, {2, 3, 1}, {3, 2, 1}}, 6,
         "rows 0->1: 0/1 0/2 1/3; rows 1->2: 1/3 2/3 3/2"},
        {GRAY_DOWN_RIGHT, {{0, 2, 1}, {0, 3, 1}, {1, 3, 1}, {2, 2, 1}}, 4,
         "(0,0)->(1,1) 0/2, (0,1)->(1,2) 0/3, (1,0)->(2,1) 1/3, (1,1)->(2,2) 2/2"},
        {GRAY_HORIZONTAL, {{0, 0, 1}, {0, 1, 1}, {1, 2, 1}, {2, 3, 1}, {3, 3, 1}, {3, 2, 1}}, 6,
         "row 0: 0/0 0/1; row 1: 1/2 2/3; row 2: 3/3 3/2"},
        {GRAY_DOWN_LEFT, {{0, 1, 1}, {1, 2, 1}, {2, 3, 1}, {3, 3, 1}}, 4,
         "(0,1)->(1,0) 0/1, (0,2)->(1,1) 1/2, (1,1)->(2,0) 2/3, (1,2)->(2,1) 3/3"},
    };
    GLCM glcm;
    for (const GrayLevel level : {GRAY_4, GRAY_8, GRAY_16}) {
        const int levels = 4 << level; // 4, 8, 16
        for (const GlcmRow& row : rows) {
            cv::Mat expected = cv::Mat::zeros(levels, levels, CV_32F);
            for (const Count& c : row.counts)
                expected.at<float>(c.first, c.second) = float(c.count) / float(row.total);
            cv::Mat out;
            glcm.CalcuOneGLCM(Scene(), out, 1, 1, 3, level, row.direction);
            ASSERT_EQ(out.type(), CV_32F) << row.why;
            ASSERT_EQ(out.size(), cv::Size(levels, levels)) << row.why;
            EXPECT_EQ(cv::norm(out, expected, cv::NORM_INF), 0.0) << row.why << " at " << levels << " levels";
        }
    }
}

TEST(Glcm, WindowShrinksToThreeByThreeInsideTheImage)
{
    // Horizontal pairs of a 6 x 6 identity image: a window row holds 0/1 and
    // 1/0 where the diagonal crosses it, 0/0 elsewhere.
    cv::Mat diagonal = cv::Mat::eye(6, 6, CV_8U);
    struct WindowRow {
        int row, col, size;
        float p00, p01, p10;
        const char* why;
    };
    const std::vector<WindowRow> rows = {
        {2, 2, 5, 12.0f / 20, 4.0f / 20, 4.0f / 20,
         "half 2, rows/cols 0..4: 5 rows x 4 pairs = 20; 0/1 for r=1..4, 1/0 for r=0..3, 12 left 0/0"},
        {2, 2, 4, 12.0f / 20, 4.0f / 20, 4.0f / 20, "size 4 | 1 = 5: the same window"},
        {0, 0, 3, 2.0f / 6, 2.0f / 6, 2.0f / 6, "row 0 < half: rows 0..2, cols 0..2: 6 pairs, 0/1 r=1,2; 1/0 r=0,1"},
        {5, 5, 3, 2.0f / 6, 2.0f / 6, 2.0f / 6, "last row and column: rows/cols 3..5, the same diagonal pattern"},
        {4, 2, 5, 5.0f / 6, 1.0f / 6, 0.0f,
         "4 + 2 = 6 not below 6: rows 3..5, cols 1..3; only (3,2)->(3,3) is 0/1, five 0/0"},
    };
    GLCM glcm;
    for (const WindowRow& row : rows) {
        cv::Mat out;
        glcm.CalcuOneGLCM(diagonal, out, row.row, row.col, row.size, GRAY_4, GRAY_HORIZONTAL);
        EXPECT_FLOAT_EQ(out.at<float>(0, 0), row.p00) << row.why;
        EXPECT_FLOAT_EQ(out.at<float>(0, 1), row.p01) << row.why;
        EXPECT_FLOAT_EQ(out.at<float>(1, 0), row.p10) << row.why;
    }
}

TEST(Glcm, QuantisesByTheLevelShift)
{
    // 200 = 0b11001000: >> 6 = 3, >> 5 = 6, >> 4 = 12; 63 -> 0, 1, 3.
    const cv::Mat source = (cv::Mat_<uchar>(1, 2) << 200, 63);
    const struct {
        GrayLevel level;
        uchar a, b;
    } rows[] = {{GRAY_4, 3, 0}, {GRAY_8, 6, 1}, {GRAY_16, 12, 3}};
    GLCM glcm;
    for (const auto& row : rows) {
        cv::Mat out(source.size(), CV_8UC1, cv::Scalar(99));
        glcm.GrayMagnitude(source, out, row.level);
        EXPECT_EQ(out.at<uchar>(0, 0), row.a);
        EXPECT_EQ(out.at<uchar>(0, 1), row.b);
    }
    cv::Mat untouched(source.size(), CV_8UC1, cv::Scalar(99));
    glcm.GrayMagnitude(source, untouched, static_cast<GrayLevel>(7));
    EXPECT_EQ(cv::countNonZero(untouched != 99), 0) << "an unknown level writes nothing";
}

TEST(Glcm, MeasuresOfAMatrix)
{
    // The horizontal matrix above: six entries of 1/6 at (0,0) (0,1) (1,2) (2,3) (3,3) (3,2).
    cv::Mat p = cv::Mat::zeros(4, 4, CV_32F);
    for (const cv::Point ij : {cv::Point(0, 0), cv::Point(0, 1), cv::Point(1, 2), cv::Point(2, 3), cv::Point(3, 3),
                               cv::Point(3, 2)})
        p.at<float>(ij.x, ij.y) = 1.0f / 6.0f;
    GLCM glcm;
    TextureEValues v{9.0f, 9.0f, 9.0f, 9.0f};
    glcm.CalcuOneTextureEValue(p, v, true);
    EXPECT_NEAR(v.energy, 1.0 / 6.0, 1e-6) << "6 * (1/6)^2";
    EXPECT_NEAR(v.contrast, 4.0 / 6.0, 1e-6) << "d^2 = 0 1 1 1 0 1";
    EXPECT_NEAR(v.homogenity, 4.0 / 6.0, 1e-6) << "(1 + 1/2 + 1/2 + 1/2 + 1 + 1/2) / 6";
    EXPECT_NEAR(v.entropy, std::log10(6.0), 1e-6) << "-6 * 1/6 * log10(1/6)";

    // A matrix summing to 0.5 fails the check and leaves the values as they were.
    TextureEValues kept{9.0f, 8.0f, 7.0f, 6.0f};
    glcm.CalcuOneTextureEValue(p * 0.5, kept, true);
    EXPECT_EQ(kept.energy, 9.0f);
    EXPECT_EQ(kept.entropy, 6.0f);
    // Without the check it is measured: energy 6 * (1/12)^2 = 1/24.
    glcm.CalcuOneTextureEValue(p * 0.5, kept, false);
    EXPECT_NEAR(kept.energy, 1.0 / 24.0, 1e-6);

    // All zeros stay zero after normalising, and so does the entropy.
    cv::Mat zero = cv::Mat::zeros(4, 4, CV_8U), normalised;
    glcm.NormalizeMat(zero, normalised);
    EXPECT_EQ(cv::countNonZero(normalised), 0);
    glcm.CalcuOneTextureEValue(normalised, kept, false);
    EXPECT_EQ(kept.entropy, 0.0f);
    EXPECT_EQ(kept.energy, 0.0f);
}

TEST(Glcm, FlatImageSumsOverPixelsWithoutDividing)
{
    // Every window of a flat 0 image puts all pairs at (0, 0): p = 1, so
    // energy 1, contrast 0, homogeneity 1, entropy 0 in each direction; 16 pixels.
    const cv::Mat flat = cv::Mat::zeros(4, 4, CV_8U);
    GLCM glcm;
    TextureEValues v{};
    glcm.CalcuTextureEValue(flat, v, 3, GRAY_4);
    EXPECT_FLOAT_EQ(v.energy, 16.0f);
    EXPECT_FLOAT_EQ(v.contrast, 0.0f);
    EXPECT_FLOAT_EQ(v.homogenity, 16.0f);
    EXPECT_FLOAT_EQ(v.entropy, 0.0f);

    cv::Mat e, c, h, s;
    glcm.CalcuTextureImages(flat, e, c, h, s, 3, GRAY_4, false);
    ASSERT_EQ(e.type(), CV_32FC1);
    EXPECT_EQ(cv::countNonZero(e != 1.0f), 0);
    EXPECT_EQ(cv::countNonZero(h != 1.0f), 0);
    EXPECT_EQ(cv::countNonZero(c), 0);
}

TEST(Glcm, TextureImagesStretchToBytes)
{
    // The scene's pixel (1, 1) has the top-left window; the flat corner of a
    // larger zero image has energy 1, the largest possible, so it maps to 255.
    cv::Mat image = cv::Mat::zeros(8, 8, CV_8U);
    Scene().copyTo(image(cv::Rect(0, 0, 4, 4)));
    GLCM glcm;
    cv::Mat e, c, h, s;
    glcm.CalcuTextureImages(image, e, c, h, s, 3, GRAY_4, true);
    ASSERT_EQ(e.type(), CV_8UC1);
    EXPECT_EQ(e.at<uchar>(6, 6), 255);
    EXPECT_EQ(s.at<uchar>(6, 6), 0) << "flat: entropy 0 is the least";
}

TEST(Glcm, ValuesBeyondTheLevelsAndTinyImagesAreRefused)
{
    GLCM glcm;
    cv::Mat out;
    const cv::Mat raw = (cv::Mat_<uchar>(3, 3) << 0, 0, 0, 0, 200, 0, 0, 0, 0);
    EXPECT_THROW(glcm.CalcuOneGLCM(raw, out, 1, 1, 3, GRAY_4, GRAY_HORIZONTAL), std::out_of_range)
        << "200 is not quantised: no row 200 in a 4 x 4 matrix";
    EXPECT_THROW(glcm.CalcuOneGLCM(cv::Mat::zeros(2, 2, CV_8U), out, 0, 0, 3, GRAY_4, GRAY_HORIZONTAL),
                 std::out_of_range);
    cv::Mat kept = cv::Mat::ones(2, 2, CV_32F);
    glcm.CalcuOneGLCM(cv::Mat(), kept, 0, 0, 3, GRAY_4, GRAY_HORIZONTAL);
    EXPECT_EQ(kept.rows, 2) << "an empty source returns at once";
}
