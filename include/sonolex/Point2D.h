// Integer point with the circular order about a pole, used to walk an
// outline's pixels by their direction from its lowest point.
#pragma once

#include <forward_list>

#include "sonolex/Tool.h"

class SONOLEX_EXPORT Point2D {
public:
    Point2D() = default;
    Point2D(int x, int y) : m_x(x), m_y(y) {}
    int GetX() const { return m_x; }
    int GetY() const { return m_y; }
    void SetX(int x) { m_x = x; }
    void SetY(int y) { m_y = y; }
    bool operator==(const Point2D& other) const { return m_x == other.m_x && m_y == other.m_y; }
    // Direction order seen from `reference`: true when the cross product of
    // (this - reference) and (other - reference), in wrapping 32-bit ints, is
    // positive; on a tie, true when this point is the nearer one.
    bool operator<(const Point2D& other) const;

private:
    int m_x = 0;
    int m_y = 0;
};

// The pole of the circular order: written by OrdenamientoCircular, read by
// Point2D::operator<. Shared by the whole process, so circular ordering must
// not run on two threads at once.
SONOLEX_EXPORT extern Point2D reference;

// First node of the smallest y, then the smallest x; end() for an empty list.
SONOLEX_EXPORT std::forward_list<Point2D>::iterator FindMin(std::forward_list<Point2D>& points);
// Moves the lowest point to the head, makes it `reference`, and sorts the
// list (stably) by direction from it, nearer first along one direction. An
// empty list is left as it is and `reference` untouched.
SONOLEX_EXPORT void OrdenamientoCircular(std::forward_list<Point2D>& points);
