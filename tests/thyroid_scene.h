// A noise-free thyroid scene whose grey levels and pixel counts are known:
// a 200 x 160 image, background 70, gland an ellipse of grey 120 about
// (100, 80) with half-axes 80 and 50, nodule the rectangle x 80..119,
// y 65..94 (40 x 30 = 1200 pixels), left half grey 25, right half 35.
#pragma once

#include <vector>

#include <opencv2/imgproc.hpp>

#include "sonolex.h"
#include "synthetic.h"

namespace thyscene {

struct Scene {
    cv::Mat image;
    std::vector<cv::Point> gland;
    std::vector<cv::Point> nodule;
    std::vector<std::vector<cv::Point>> model;
    RoiCoor roi{70, 50, 60, 60};

    ThyroidResult Run(int channels = 1, const cv::Mat& pixels = cv::Mat())
    {
        const cv::Mat& img = pixels.empty() ? image : pixels;
        std::vector<MyPoint> organ = synth::ToMyPoints(gland);
        std::vector<MyPoint> lesion = synth::ToMyPoints(nodule);
        std::vector<int> sizes;
        std::vector<MyPoint> points;
        for (const auto& m : model) {
            sizes.push_back(static_cast<int>(m.size()));
            for (const cv::Point& p : m)
                points.push_back(MyPoint{p.x, p.y});
        }
        ThyroidResult r{-1, -1, -1, -1};
        ThyroidDescriptionModelAfterProcess(img.data, channels, img.cols, img.rows, static_cast<int>(organ.size()),
                                            organ.data(), static_cast<int>(lesion.size()), lesion.data(),
                                            static_cast<int>(sizes.size()), sizes.data(), points.data(), roi, &r);
        return r;
    }
};

inline std::vector<cv::Point> Box(int x0, int y0, int x1, int y1)
{
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

inline Scene Make(int leftGrey = 25, int rightGrey = 35)
{
    Scene s;
    s.image = cv::Mat(160, 200, CV_8U, cv::Scalar(70));
    s.gland = synth::Outline({100, 80}, 80, 50, 240);
    cv::fillPoly(s.image, std::vector<std::vector<cv::Point>>{s.gland}, cv::Scalar(120), cv::LINE_8);
    s.nodule = Box(80, 65, 119, 94);
    s.image(cv::Rect(80, 65, 20, 30)).setTo(leftGrey);
    s.image(cv::Rect(100, 65, 20, 30)).setTo(rightGrey);
    return s;
}

// A 3 x 3 deposit of the model with its top-left pixel at (x, y).
inline std::vector<cv::Point> Deposit(int x, int y) { return Box(x, y, x + 2, y + 2); }

} // namespace thyscene
