// Coordinate equality used when line end candidates are deduplicated.
#include "Tool/Tool.h"

bool equalX(const cv::Point& a, const cv::Point& b) { return a.x == b.x; }
bool equalY(const cv::Point& a, const cv::Point& b) { return a.y == b.y; }
