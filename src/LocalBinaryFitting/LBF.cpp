// The level-set evolution and RunLBF, which drives it from a mask to one outline.
#include <cmath>
#include <stdexcept>

#include <opencv2/imgproc.hpp>

#include "BoundarySharpness/BoundarySharpness.h"
#include "LocalBinaryFitting/LBF.h"
#include "RegionSelection/RegionSelection.h"

namespace {

constexpr int kKernelSize = 29;
constexpr double kKernelSigma = 7.0;
constexpr int kSteps = 15;
constexpr double kPi = 3.14159265;              // as the level set was tuned with
constexpr double kTwoOverPi = 0.6366197730950255; // 2 / kPi

} // namespace

void LBF::RunLBF(cv::Mat image, const cv::Mat& mask, std::vector<cv::Point>& out)
{
    const int rows = image.rows;
    const int cols = image.cols;
    if (image.channels() > 1)
        cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);

    cv::Mat phi(rows, cols, CV_64F, cv::Scalar(2.0));
    phi.setTo(cv::Scalar(-2.0), mask);

    cv::Mat img;
    image.convertTo(img, CV_64F, 1.0, 0.0);

    const cv::Mat G = cv::getGaussianKernel(kKernelSize, kKernelSigma, CV_64F);
    cv::Mat K = G * G.t();
    cv::Mat KI = Conv2(img, K);
    cv::Mat KONE = Conv2(cv::Mat::ones(rows, cols, CV_64F), K);

    for (int i = 0; i < kSteps; ++i)
        phi = EvolutionLBF(phi, img, K, KI, KONE, 200.0, 0.1, 1.0, 1.0, 2.0, 1.0, 1);

    cv::Mat seg = cv::Mat::zeros(rows, cols, CV_8UC1);
    if (!phi.isContinuous())
        return;
    const double* level = phi.ptr<double>(0);
    uchar* inside = seg.ptr<uchar>(0);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) {
            const size_t i = size_t(r) * size_t(cols) + size_t(c);
            // NaN is not greater than 0, so it counts as inside.
            if (!(level[i] > 0.0))
                inside[i] = 255;
        }

    std::vector<std::vector<cv::Point>> found;
    cv::findContours(mask, found, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE, cv::Point(0, 0));
    // The first outline of the mask is the reference; a mask without one has none to read.
    if (found.empty())
        throw std::invalid_argument("RunLBF: starting mask has no outline");
    const std::vector<cv::Point> reference = found[0];

    MyFillHole(seg, seg);
    GetTargetRegion1(seg, reference, out);
}

namespace {

// One evolution of the level set; `weight`, when given, scales the data term pixel by pixel.
void Evolve(LBF& lbf, cv::Mat& phi, cv::Mat& img, cv::Mat& K, cv::Mat& KI, cv::Mat& KONE, const cv::Mat* weight,
            double nu, double timestep, double mu, double lambda1, double lambda2, double epsilon)
{
    phi = lbf.NeumannBoundCond(phi);
    const cv::Mat curv = lbf.CurvatureCentral(phi);
    const cv::Mat dirac = (epsilon / kPi) / (epsilon * epsilon + phi.mul(phi));
    const cv::Mat heavy = 0.5 * (1 + kTwoOverPi * lbf.MatAtan(phi / epsilon));
    const std::pair<cv::Mat, cv::Mat> fits = lbf.LocalBinaryFit(K, img, KI, KONE, heavy);
    const cv::Mat force = lbf.DataForce(img, K, KONE, fits.first, fits.second, lambda1, lambda2);
    cv::Mat dataTerm = -1 * dirac.mul(force);
    if (weight != nullptr)
        dataTerm = dataTerm.mul(*weight);
    cv::Mat lap;
    cv::Laplacian(phi, lap, CV_64F, 1, 1.0, 0.0, cv::BORDER_DEFAULT);
    const cv::Mat smoothTerm = mu * (lap - curv);
    const cv::Mat lengthTerm = nu * dirac.mul(curv);
    phi = phi + timestep * ((lengthTerm + smoothTerm) + dataTerm);
}

} // namespace

cv::Mat LBF::EvolutionLBF(cv::Mat& phi, cv::Mat& img, cv::Mat& K, cv::Mat& KI, cv::Mat& KONE, double nu,
                          double timestep, double mu, double lambda1, double lambda2, double epsilon, int numIter)
{
    for (int i = 0; i < numIter; ++i)
        Evolve(*this, phi, img, K, KI, KONE, nullptr, nu, timestep, mu, lambda1, lambda2, epsilon);
    return phi;
}

cv::Mat LBF::EvolutionLBF2(cv::Mat& phi, cv::Mat& img, cv::Mat& K, cv::Mat& KI, cv::Mat& KONE, cv::Mat& weight,
                           double nu, double timestep, double mu, double lambda1, double lambda2, double epsilon,
                           int numIter)
{
    for (int i = 0; i < numIter; ++i)
        Evolve(*this, phi, img, K, KI, KONE, &weight, nu, timestep, mu, lambda1, lambda2, epsilon);
    return phi;
}

std::pair<cv::Mat, cv::Mat> LBF::LocalBinaryFit(cv::Mat K, cv::Mat& img, cv::Mat& KI, cv::Mat& KONE, cv::Mat H)
{
    const cv::Mat IH = img.mul(H);
    const cv::Mat c1 = Conv2(H, K);
    const cv::Mat c2 = Conv2(IH, K);
    cv::Mat f1 = c2 / c1;
    cv::Mat f2 = (KI - c2) / (KONE - c1);
    return std::make_pair(f1, f2);
}

cv::Mat LBF::DataForce(cv::Mat& img, cv::Mat& K, cv::Mat& KONE, cv::Mat f1, cv::Mat f2, double lambda1,
                       double lambda2)
{
    const cv::Mat s2 = lambda1 * f1.mul(f1) - lambda2 * f2.mul(f2);
    const cv::Mat s1 = lambda1 * f1 - lambda2 * f2;
    return (lambda1 - lambda2) * KONE.mul(img).mul(img) + Conv2(s2, K) - 2.0 * img.mul(Conv2(s1, K));
}

cv::Mat LBF::CurvatureCentral(cv::Mat& u)
{
    cv::Mat ux = GradientX(u);
    cv::Mat uy = GradientY(u);
    cv::Mat norm;
    cv::magnitude(ux, uy, norm);
    // IEEE division, as OpenCV 4 divides floating point: 0/0 is NaN.
    cv::Mat nx = ux / norm;
    cv::Mat ny = uy / norm;
    return GradientX(nx) + GradientY(ny);
}

cv::Mat LBF::NeumannBoundCond(cv::Mat& u)
{
    const int nr = u.rows;
    const int nc = u.cols;
    // The ring copies from two pixels inward; a smaller matrix has none there.
    if (nr < 3 || nc < 3)
        throw std::out_of_range("NeumannBoundCond: matrix smaller than 3 x 3");
    CV_Assert(u.type() == CV_64FC1);
    // One after another in place, so on a 3 x 3 matrix later copies read earlier ones.
    u.at<double>(0, 0) = u.at<double>(2, 2);
    u.at<double>(nr - 1, 0) = u.at<double>(nr - 3, 2);
    u.at<double>(0, nc - 1) = u.at<double>(2, nc - 3);
    u.at<double>(nr - 1, nc - 1) = u.at<double>(nr - 3, nc - 3);
    for (int c = 1; c <= nc - 2; ++c) {
        u.at<double>(0, c) = u.at<double>(2, c);
        u.at<double>(nr - 1, c) = u.at<double>(nr - 3, c);
    }
    for (int r = 1; r <= nr - 2; ++r) {
        u.at<double>(r, 0) = u.at<double>(r, 2);
        u.at<double>(r, nc - 1) = u.at<double>(r, nc - 3);
    }
    return u;
}

cv::Mat LBF::GradientX(cv::Mat& m)
{
    const int nc = m.cols;
    // The one-sided ends need a second column.
    if (nc < 2)
        throw std::out_of_range("GradientX: fewer than 2 columns");
    CV_Assert(m.type() == CV_64FC1);
    cv::Mat g(m.size(), m.type());
    for (int r = 0; r < m.rows; ++r) {
        const double* in = m.ptr<double>(r);
        double* out = g.ptr<double>(r);
        out[0] = in[1] - in[0];
        out[nc - 1] = in[nc - 1] - in[nc - 2];
        for (int c = 1; c < nc - 1; ++c)
            out[c] = (in[c + 1] - in[c - 1]) * 0.5;
    }
    return g;
}

cv::Mat LBF::GradientY(cv::Mat& m)
{
    const int nr = m.rows;
    // The one-sided ends need a second row.
    if (nr < 2)
        throw std::out_of_range("GradientY: fewer than 2 rows");
    CV_Assert(m.type() == CV_64FC1);
    cv::Mat g(m.size(), m.type());
    for (int r = 0; r < nr; ++r) {
        const double* next = m.ptr<double>(r == nr - 1 ? r : r + 1);
        const double* prev = m.ptr<double>(r == 0 ? r : r - 1);
        double* out = g.ptr<double>(r);
        const bool end = r == 0 || r == nr - 1;
        for (int c = 0; c < m.cols; ++c)
            out[c] = end ? next[c] - prev[c] : (next[c] - prev[c]) * 0.5;
    }
    return g;
}

cv::Mat LBF::MatAtan(cv::Mat m)
{
    CV_Assert(m.type() == CV_64FC1);
    cv::Mat out(m.size(), CV_64F);
    for (int r = 0; r < m.rows; ++r) {
        const double* in = m.ptr<double>(r);
        double* to = out.ptr<double>(r);
        for (int c = 0; c < m.cols; ++c)
            to[c] = std::atan(in[c]);
    }
    return out;
}

cv::Mat LBF::Conv2(const cv::Mat& src, const cv::Mat& kernel) { return ::Conv2(src, kernel); }
