// Conservative pre-filter for cv::pointPolygonTest(outline, p, true) < 1.
//
// An outline's edges join integer vertices. A pixel can lie closer than one
// pixel to an edge only inside that edge's inclusive bounding box: outside it
// the pixel is at least one whole column or row away. With integer vertices
// and pixels below 2^20 and 2^22 in size, every difference is exact in float
// and every product exact in double, so the library's measured distance is
// then at least 1.0 as well. Pixels the
// filter rejects would fail the test anyway; the others are measured as before.
//
// WithinOne answers the whole test. The library's distance is the square
// root of the least ratio num / denom over the edges, where num and denom
// are whole numbers from integer vertices and pixels: when the outline's box
// spans at most 2048 pixels every such number is exact in double, a ratio
// below 1 is at most 1 - 2^-23, and its root rounds below 1 in double and in
// float alike; a ratio of 1 or more never roots below 1. So the test holds
// exactly when some edge whose inclusive box holds the pixel has num < denom
// in integers. Larger outlines are measured by the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

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
                m_outline = outline;
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
            m_outline = outline;
            return;
        }
        m_origin = cv::Point(minX, minY);
        m_near = cv::Mat::zeros(maxY - minY + 1, maxX - minX + 1, CV_8UC1);
        m_exact = maxX - minX <= kExactSpan && maxY - minY <= kExactSpan;
        if (m_exact)
            m_rowStart.assign(size_t(maxY - minY + 2), 0);
        cv::Point prev = outline.back();
        for (const cv::Point& cur : outline) {
            const int x0 = std::min(prev.x, cur.x) - minX, x1 = std::max(prev.x, cur.x) - minX;
            const int y0 = std::min(prev.y, cur.y) - minY, y1 = std::max(prev.y, cur.y) - minY;
            for (int y = y0; y <= y1; ++y) {
                uchar* row = m_near.ptr<uchar>(y);
                for (int x = x0; x <= x1; ++x)
                    row[x] = 1;
                if (m_exact)
                    ++m_rowStart[size_t(y) + 1];
            }
            prev = cur;
        }
        if (!m_exact) {
            m_outline = outline;
            return;
        }
        // Each row's edges, kept together in one array.
        for (size_t y = 1; y < m_rowStart.size(); ++y)
            m_rowStart[y] += m_rowStart[y - 1];
        m_edges.resize(m_rowStart.back());
        std::vector<int> fill(m_rowStart.begin(), m_rowStart.end() - 1);
        prev = outline.back();
        for (const cv::Point& cur : outline) {
            const Edge edge{prev - m_origin, cur - m_origin};
            for (int y = std::min(edge.from.y, edge.to.y); y <= std::max(edge.from.y, edge.to.y); ++y)
                m_edges[size_t(fill[size_t(y)]++)] = edge;
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

    // fabs(cv::pointPolygonTest(outline, p, true)) < 1, in double or, with
    // `inFloat`, after rounding the distance to float.
    bool WithinOne(cv::Point p, bool inFloat = false) const
    {
        if (!CanBeWithinOne(p))
            return false;
        if (!m_exact) {
            const double d = std::fabs(cv::pointPolygonTest(m_outline, p, true));
            return inFloat ? static_cast<float>(d) < 1.0f : d < 1.0;
        }
        const long long px = (long long)p.x - m_origin.x, py = (long long)p.y - m_origin.y;
        if (px < 0 || py < 0 || px >= m_near.cols || py >= m_near.rows)
            return false; // a far pixel the filter let through
        for (int i = m_rowStart[size_t(py)]; i < m_rowStart[size_t(py) + 1]; ++i) {
            const Edge& e = m_edges[size_t(i)];
            if (px < std::min(e.from.x, e.to.x) || px > std::max(e.from.x, e.to.x))
                continue;
            const long long dx = e.to.x - e.from.x, dy = e.to.y - e.from.y;
            const long long dx1 = px - e.from.x, dy1 = py - e.from.y;
            const long long dx2 = px - e.to.x, dy2 = py - e.to.y;
            long long num, denom = 1;
            if (dx1 * dx + dy1 * dy <= 0) {
                num = dx1 * dx1 + dy1 * dy1;
            } else if (dx2 * dx + dy2 * dy >= 0) {
                num = dx2 * dx2 + dy2 * dy2;
            } else {
                const long long cross = dy1 * dx - dx1 * dy;
                num = cross * cross;
                denom = dx * dx + dy * dy;
            }
            if (num < denom)
                return true;
        }
        return false;
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
    static constexpr int kExactSpan = 2048;
    struct Edge {
        cv::Point from, to; // relative to the box's corner
    };

    std::vector<cv::Point> m_outline;
    bool m_exact = false;
    std::vector<int> m_rowStart; // row y's edges are m_edges[m_rowStart[y] .. m_rowStart[y + 1])
    std::vector<Edge> m_edges;    // the edges whose rows hold each row of the box, row by row
    bool m_all = false;
    cv::Point m_origin;
    cv::Mat m_near; // 1 inside some edge's bounding box
};
