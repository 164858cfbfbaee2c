// Verdicts that need a model: the shape-context distance to the fitted
// ellipse, and the host's SVMs.
#include <algorithm>
#include <stdexcept>

#include <opencv2/imgproc.hpp>
#include <opencv2/ml.hpp>
#include <opencv2/shape.hpp>

#include "FeatureDescription/Description.h"
#include "FeatureDescription/DescriptionMetrics.h"
#include "PreprocessContours/PreprocessContours.h"

namespace {

int PredictedLabel(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features)
{
    cv::Mat row(1, static_cast<int>(features.size()), CV_32F);
    for (size_t i = 0; i < features.size(); ++i)
        row.at<float>(0, static_cast<int>(i)) = features[i];
    return TruncToInt(static_cast<double>(svm->predict(row)));
}

} // namespace

double Description::MatchContoursSC(const std::vector<cv::Point>& contour)
{
    const std::vector<cv::Point> polygon = EllipsePolygon(m_ellipse);
    std::vector<cv::Point> all = contour;
    all.insert(all.end(), polygon.begin(), polygon.end());
    if (contour.empty())
        throw std::invalid_argument("MatchContoursSC needs a contour");
    // One canvas holding both outlines, 2 pixels clear of its edges.
    const cv::Rect bounds = cv::boundingRect(all);
    const cv::Point shift(2 - bounds.x, 2 - bounds.y);
    const cv::Size canvas(bounds.width + 4, bounds.height + 4);

    PreprocessContours lesion;
    lesion._frame[1] = cv::Mat::zeros(canvas, CV_8UC1);
    cv::Mat lesionFrame = lesion._frame[1];
    SafeDrawContours(lesionFrame, {contour}, 0, cv::Scalar(255), 1, cv::LINE_8, INT_MAX, shift);
    PreprocessContours model;
    model._frame[0] = cv::Mat::zeros(canvas, CV_8UC1);
    cv::Mat modelFrame = model._frame[0];
    SafeDrawContours(modelFrame, {polygon}, 0, cv::Scalar(255), 1, cv::LINE_8, INT_MAX, shift);

    std::vector<cv::Point> lesionPts, modelPts;
    lesion.GetOriginalSamplePts(lesionPts);
    model.GetEllipseSamplePts(modelPts, static_cast<int>(lesionPts.size()));

    cv::Ptr<cv::ShapeContextDistanceExtractor> extractor = cv::createShapeContextDistanceExtractor(
        12, 4, 0.2f, 2.0f, 3, cv::createChiHistogramCostExtractor(), cv::createThinPlateSplineShapeTransformer());
    return static_cast<double>(extractor->computeDistance(lesionPts, modelPts));
}

int Description::ShapeDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features,
                                     float first, float second, bool skip)
{
    const float ratio = std::max(first, second) / std::min(first, second);
    int predicted = 1;
    if (!skip)
        predicted = PredictedLabel(svm, features);
    if (predicted == -1)
        return 3;
    if (predicted == 1)
        return ratio < 1.2f ? 1 : 2;
    return 0;
}

int Description::EchoDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features)
{
    return PredictedLabel(svm, features);
}

int Description::BoundaryDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features)
{
    return PredictedLabel(svm, features);
}

int Description::MarginDescriptionSVM(const cv::Ptr<cv::ml::SVM>& svm, const std::vector<float>& features)
{
    return PredictedLabel(svm, features);
}
