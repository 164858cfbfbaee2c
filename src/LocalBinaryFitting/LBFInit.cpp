// Starting functions for the level set and a coarse region count, kept for
// hosts that drive the evolution themselves.
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "LocalBinaryFitting/LBF.h"

void LBF::GetEllipsePhi(cv::Mat image, cv::Mat& phi, double c, cv::Rect rect)
{
    cv::Mat drawn(image.rows, image.cols, CV_8UC1, cv::Scalar(255));
    const cv::RotatedRect box(cv::Point2f(float(image.cols * 0.5), float(image.rows * 0.5)),
                              cv::Size2f(float(rect.width), float(rect.height)), 0.0f);
    cv::ellipse(drawn, box, cv::Scalar(0), cv::FILLED, cv::LINE_8);
    drawn.convertTo(phi, CV_64F);
    phi.setTo(cv::Scalar(c), phi == 255.0);
    phi.setTo(cv::Scalar(-c), phi == 0.0);
}

void LBF::GenRectPhi(cv::Mat image, cv::Mat& phi, double c, cv::Rect rect)
{
    cv::Mat level(image.rows, image.cols, CV_64F, cv::Scalar(c));
    // Both ends inclusive; a rectangle reaching outside the image would be written past its end.
    const cv::Rect inside(rect.x, rect.y, WrapAdd(rect.width, 1), WrapAdd(rect.height, 1));
    if (rect.width < 0 || rect.height < 0 || (inside & cv::Rect(0, 0, image.cols, image.rows)) != inside)
        throw std::out_of_range("GenRectPhi: rectangle outside the image");
    level(inside).setTo(cv::Scalar(-c));
    phi = level.clone();
}

void LBF::GenCirclePhi(cv::Mat image, cv::Mat& phi, double c, float radius)
{
    cv::Mat level(image.rows, image.cols, CV_64F, cv::Scalar(c));
    const float cx = float(image.cols * 0.5);
    const float cy = float(image.rows * 0.5);
    for (int r = 0; r < image.rows; ++r) {
        double* row = level.ptr<double>(r);
        for (int col = 0; col < image.cols; ++col) {
            const float dx = float(col) - cx;
            const float dy = float(r) - cy;
            if (dx * dx + dy * dy <= radius * radius)
                row[col] = -c;
        }
    }
    phi = level.clone();
}

void LBF::CoarseSegmentation(cv::Mat& phi, double& area)
{
    phi.convertTo(phi, CV_8UC1, 255.0);
    cv::threshold(phi, phi, 0, 255, cv::THRESH_OTSU);
    const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(7, 7), cv::Point(-1, -1));
    cv::morphologyEx(phi, phi, cv::MORPH_CLOSE, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
                     cv::morphologyDefaultBorderValue());
    std::vector<std::vector<cv::Point>> found;
    cv::findContours(phi, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    if (found.empty()) {
        area = 0.0;
        return;
    }
    for (const std::vector<cv::Point>& contour : found)
        if (contour.size() >= 11)
            area += cv::contourArea(contour);
}
