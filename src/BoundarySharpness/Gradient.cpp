#include <stdexcept>

#include "BoundarySharpness/BoundarySharpness.h"

cv::Mat GradientX(cv::Mat image)
{
    // A single column has no neighbour to difference against.
    if (image.cols < 2 || image.type() != CV_64FC1)
        throw std::invalid_argument("GradientX needs two columns of doubles");
    cv::Mat out(image.size(), image.type());
    const int last = image.cols - 1;
    for (int r = 0; r < image.rows; ++r) {
        const double* in = image.ptr<double>(r);
        double* g = out.ptr<double>(r);
        g[0] = in[1] - in[0];
        g[last] = in[last] - in[last - 1];
        for (int c = 1; c < last; ++c)
            g[c] = (in[c + 1] - in[c - 1]) / 2.0;
    }
    return out;
}

cv::Mat GradientY(cv::Mat image)
{
    // A single row has no neighbour to difference against.
    if (image.rows < 2 || image.type() != CV_64FC1)
        throw std::invalid_argument("GradientY needs two rows of doubles");
    cv::Mat out(image.size(), image.type());
    const int last = image.rows - 1;
    for (int r = 0; r < image.rows; ++r) {
        const double* in = image.ptr<double>(r);
        const double* up = image.ptr<double>(r == 0 ? 0 : r - 1);
        const double* down = image.ptr<double>(r == last ? last : r + 1);
        double* g = out.ptr<double>(r);
        for (int c = 0; c < image.cols; ++c) {
            if (r == 0)
                g[c] = down[c] - in[c];
            else if (r == last)
                g[c] = in[c] - up[c];
            else
                g[c] = (down[c] - up[c]) / 2.0;
        }
    }
    return out;
}
