// Local binary fitting level set: evolves a signed function, negative
// inside, from a starting mask towards the edges of a grey image, and turns
// the result into one outline. All level-set arithmetic is in double on
// CV_64F matrices.
#pragma once

#include <utility>
#include <vector>

#include <opencv2/core.hpp>

#include "sonolex/Tool.h"

class SONOLEX_EXPORT LBF {
public:
    // Fifteen evolution steps from `mask` (non-zero inside) on `image`, then
    // the outline of the region where the function is not positive, chosen
    // near the mask's first outline. Throws when the mask has no outline.
    void RunLBF(cv::Mat image, const cv::Mat& mask, std::vector<cv::Point>& out);
    // `numIter` steps of the level set; `phi` is updated in place and returned.
    cv::Mat EvolutionLBF(cv::Mat& phi, cv::Mat& img, cv::Mat& K, cv::Mat& KI, cv::Mat& KONE, double nu,
                         double timestep, double mu, double lambda1, double lambda2, double epsilon, int numIter);
    // The same with the data term weighted pixel by pixel by `weight`.
    cv::Mat EvolutionLBF2(cv::Mat& phi, cv::Mat& img, cv::Mat& K, cv::Mat& KI, cv::Mat& KONE, cv::Mat& weight,
                          double nu, double timestep, double mu, double lambda1, double lambda2, double epsilon,
                          int numIter);
    // Local means inside (f1) and outside (f2) of the smoothed region H.
    std::pair<cv::Mat, cv::Mat> LocalBinaryFit(cv::Mat K, cv::Mat& img, cv::Mat& KI, cv::Mat& KONE, cv::Mat H);
    // Difference of the inner and outer local fitting energies at each pixel.
    cv::Mat DataForce(cv::Mat& img, cv::Mat& K, cv::Mat& KONE, cv::Mat f1, cv::Mat f2, double lambda1,
                      double lambda2);
    // Divergence of the unit normal; 0/0 where the function is flat gives NaN.
    cv::Mat CurvatureCentral(cv::Mat& u);
    // Mirrors the outer ring of pixels from two steps inward, in place.
    // Throws below 3 x 3.
    cv::Mat NeumannBoundCond(cv::Mat& u);
    // Central differences along columns (X) or rows (Y), one-sided at the
    // ends. Throws below 2 columns (X) or 2 rows (Y).
    cv::Mat GradientX(cv::Mat& m);
    cv::Mat GradientY(cv::Mat& m);
    cv::Mat MatAtan(cv::Mat m);
    // True convolution with a zero border, anchored as MATLAB's conv2 'same'.
    cv::Mat Conv2(const cv::Mat& src, const cv::Mat& kernel);

    // Starting functions: c outside, -c inside a centred ellipse of the
    // rectangle's size, the rectangle itself (ends inclusive), or a centred circle.
    void GetEllipsePhi(cv::Mat image, cv::Mat& phi, double c, cv::Rect rect);
    void GenRectPhi(cv::Mat image, cv::Mat& phi, double c, cv::Rect rect);
    void GenCirclePhi(cv::Mat image, cv::Mat& phi, double c, float radius);
    // Adds the areas of the Otsu-split, closed regions of `phi` (outlines of
    // 11 points or more) to `area`; 0 when nothing is found. `phi` becomes 8-bit.
    void CoarseSegmentation(cv::Mat& phi, double& area);
};
