// Circular order of outline pixels about their lowest point.
#include "Point2D/Point2D.h"

#include <utility>

Point2D reference;

bool Point2D::operator<(const Point2D& other) const
{
    const int ax = WrapSub(m_x, reference.GetX());
    const int ay = WrapSub(m_y, reference.GetY());
    const int bx = WrapSub(other.m_x, reference.GetX());
    const int by = WrapSub(other.m_y, reference.GetY());
    const int cross = WrapSub(WrapMul(ax, by), WrapMul(ay, bx));
    if (cross > 0)
        return true;
    if (cross < 0)
        return false;
    return WrapAdd(WrapMul(ax, ax), WrapMul(ay, ay)) < WrapAdd(WrapMul(bx, bx), WrapMul(by, by));
}

std::forward_list<Point2D>::iterator FindMin(std::forward_list<Point2D>& points)
{
    auto lowest = points.begin();
    for (auto it = points.begin(); it != points.end(); ++it) {
        if (it->GetY() < lowest->GetY() || (it->GetY() == lowest->GetY() && it->GetX() < lowest->GetX()))
            lowest = it;
    }
    return lowest;
}

void OrdenamientoCircular(std::forward_list<Point2D>& points)
{
    // An empty outline has no pole.
    if (points.empty())
        return;
    std::swap(*FindMin(points), points.front());
    reference = points.front();
    points.sort([](const Point2D& a, const Point2D& b) { return a < b; });
}
