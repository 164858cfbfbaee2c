// Conservative pre-filter for cv::pointPolygonTest(outline, p, true) < 1.
//
// An outline's edges join integer vertices. A pixel can lie closer than one
// pixel to an edge only inside that edge's inclusive bounding box: outside it
// the pixel is at least one whole column or row away. With integer vertices
// and pixels below 2^20 and 2^22 in size, every difference is exact in float
// and every product exact in double, so the library's measured distance is
// then at least 1.0 as well. Pixels the
// filter rejects would fail the test anyway; the others are measured as before.
#pragma once

#include <algorithm>
#include <vector>

#include <opencv2/core.hpp>

class OutlineProximity {
public:
    explicit OutlineProximity(const std::vector<cv::Point>& outline)
    {
        if (outline.empty())
            return; // no edge: nothing is near
        const int limit = 1 << 20;
        int minX = outline[0].x, maxX = minX, minY = outline[0].y, maxY = minY;
        for (const cv::Point& p : outline) {
            if (p.x <= -limit || p.x >= limit || p.y <= -limit || p.y >= limit) {
                m_all = true; // beyond the range where the argument holds: measure every pixel
                return;
            }
            minX = std::min(minX, p.x);
            maxX = std::max(maxX, p.x);
            minY = std::min(minY, p.y);
            maxY = std::max(maxY, p.y);
        }
        const long long area = (long long)(maxX - minX + 1) * (long long)(maxY - minY + 1);
        if (area > (1LL << 24)) {
            m_all = true;
            return;
        }
        m_origin = cv::Point(minX, minY);
        m_near = cv::Mat::zeros(maxY - minY + 1, maxX - minX + 1, CV_8UC1);
        cv::Point prev = outline.back();
        for (const cv::Point& cur : outline) {
            const int x0 = std::min(prev.x, cur.x) - minX, x1 = std::max(prev.x, cur.x) - minX;
            const int y0 = std::min(prev.y, cur.y) - minY, y1 = std::max(prev.y, cur.y) - minY;
            for (int y = y0; y <= y1; ++y) {
                uchar* row = m_near.ptr<uchar>(y);
                for (int x = x0; x <= x1; ++x)
                    row[x] = 1;
            }
            prev = cur;
        }
    }

    // False only where the measured distance to the outline is at least 1.
    bool CanBeWithinOne(cv::Point p) const
    {
        const int far = 1 << 22;
        if (m_all || p.x <= -far || p.x >= far || p.y <= -far || p.y >= far)
            return true;
        if (m_near.empty())
            return false;
        const long long x = (long long)p.x - m_origin.x;
        const long long y = (long long)p.y - m_origin.y;
        if (x < 0 || y < 0 || x >= m_near.cols || y >= m_near.rows)
            return false;
        return m_near.at<uchar>(static_cast<int>(y), static_cast<int>(x)) != 0;
    }

    // The pixels outside `box` (inclusive) all measure at least 1 from the
    // outline; false when the outline is too far out to say, and every
    // pixel must be measured.
    bool Bounds(cv::Rect& box) const
    {
        if (m_all)
            return false;
        box = cv::Rect(m_origin, m_near.size());
        return true;
    }

private:
    bool m_all = false;
    cv::Point m_origin;
    cv::Mat m_near; // 1 inside some edge's bounding box
};
