// Construction and setters of the verdict object.
#include "FeatureDescription/Description.h"

Description::Description(cv::Mat image, cv::Mat region, cv::Rect roi)
    : m_image(image.clone()), m_roi(roi), m_regionImage(region.clone())
{
}

void Description::SetNewSize(cv::Mat image)
{
    m_sizedImage = image;
    m_newWidth = image.cols;
    m_newHeight = image.rows;
}

void Description::SetCentroid(cv::Point point) { m_centroid = point; }

void Description::SetAxisPts(const cv::Point* points)
{
    if (points == nullptr) {
        m_axisPts[0] = cv::Point(0, 0);
        m_axisPts[1] = cv::Point(1, 0);
        return;
    }
    m_axisPts[0] = points[0];
    m_axisPts[1] = points[1];
}

void Description::SetEllipse(cv::RotatedRect ellipse)
{
    m_ellipse = ellipse;
    m_ellipseAngle = ellipse.angle;
}

void Description::SetLesionContour(const std::vector<cv::Point>& contour) { m_lesionContour = contour; }
void Description::SetOrganContour(const std::vector<cv::Point>& contour) { m_organContour = contour; }

WallSize Description::GetGBWallSize() { return WallSize{m_wallMax, m_wallMean, m_wallFirst, m_wallSecond}; }
