// The pixels of an 8-connected walk by step number, without stepping.
//
// A fresh walk's pixel k is p + k*A + c(k)*B, with A the unit step along
// the major axis, B the one along the minor axis and c(k) the number of
// minor steps taken so far, which the error term fixes in closed form:
// c(k) = ceil((2k*dy - dx) / (2dx)). Both coordinates are monotone in k, so
// the steps whose pixels fall inside a rectangle form one run, found by
// halving.
#pragma once

#include <cstdint>

#include <opencv2/imgproc.hpp>

class LineSteps {
public:
    // `fresh` is a point-mode walk (built on a size or a rectangle) not yet stepped.
    explicit LineSteps(const cv::LineIterator& fresh)
        : m_start(fresh.p), m_count(fresh.count), m_dx(fresh.plusDelta / 2), m_dy(-(int64_t)fresh.minusDelta / 2),
          m_major(fresh.minusShift, fresh.minusStep), m_minor(fresh.plusShift, fresh.plusStep)
    {
    }

    // Minor steps taken before step k.
    int64_t MinorSteps(int64_t k) const
    {
        if (m_dx <= 0)
            return 0;
        const int64_t num = 2 * k * m_dy - m_dx, den = 2 * m_dx;
        return num >= 0 ? (num + den - 1) / den : -((-num) / den);
    }

    cv::Point At(int64_t k) const
    {
        const int64_t c = MinorSteps(k);
        return cv::Point(static_cast<int>(m_start.x + k * m_major.x + c * m_minor.x),
                         static_cast<int>(m_start.y + k * m_major.y + c * m_minor.y));
    }

    // The first and last step whose pixel lies inside `box`; false when none does.
    bool Within(const cv::Rect& box, int& first, int& last) const
    {
        if (m_count < 1 || box.width <= 0 || box.height <= 0)
            return false;
        int64_t lo = 0, hi = m_count - 1;
        const auto clamp = [&](int64_t low, int64_t high, bool alongX) {
            // The steps whose coordinate lies in [low, high], meeting [lo, hi].
            const auto coord = [&](int64_t k) -> int64_t {
                const cv::Point p = At(k);
                return alongX ? p.x : p.y;
            };
            const bool rising = coord(m_count - 1) >= coord(0);
            const auto below = [&](int64_t k) { return rising ? coord(k) < low : coord(k) > high; };
            const auto beyond = [&](int64_t k) { return rising ? coord(k) > high : coord(k) < low; };
            int64_t a = 0, b = m_count; // first step not below
            while (a < b) {
                const int64_t m = a + (b - a) / 2;
                if (below(m))
                    a = m + 1;
                else
                    b = m;
            }
            const int64_t from = a;
            a = 0;
            b = m_count; // first step beyond
            while (a < b) {
                const int64_t m = a + (b - a) / 2;
                if (beyond(m))
                    b = m;
                else
                    a = m + 1;
            }
            lo = std::max(lo, from);
            hi = std::min(hi, a - 1);
        };
        clamp(box.x, (int64_t)box.x + box.width - 1, true);
        clamp(box.y, (int64_t)box.y + box.height - 1, false);
        if (lo > hi)
            return false;
        first = static_cast<int>(lo);
        last = static_cast<int>(hi);
        return true;
    }

private:
    cv::Point m_start;
    int m_count;
    int64_t m_dx, m_dy;
    cv::Point m_major, m_minor;
};
