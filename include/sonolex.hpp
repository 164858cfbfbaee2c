/*
 * sonolex.hpp: the classes and free functions behind the entry points of
 * sonolex.h, for C++17 hosts that want the measures themselves.
 *
 * Link sonolex::sonolex (or -lsonolex) and OpenCV's core and imgproc; the
 * declarations use cv::Mat, cv::Point and cv::RotatedRect. Images are 8-bit
 * grey CV_8UC1 unless a block says otherwise; masks are CV_8UC1, coded 0/1
 * ("label") or 0/255 ("mask"), and any non-zero pixel counts as set.
 * Coordinates are x = column, y = row, in the frame of the image handed in.
 *
 * Every object is meant for one image and one thread: nothing is shared
 * between objects and no global is touched, so separate objects may be used
 * on separate threads, but one object must not be used by two at once.
 * Failures are exceptions: cv::Exception from OpenCV and std::exception
 * (out_of_range, invalid_argument, length_error) where a read would leave a
 * matrix or a point set. The entry points of sonolex.h catch them all.
 */
#ifndef SONOLEX_HPP
#define SONOLEX_HPP

#include "sonolex.h"

/* Free helpers shared by every organ: float-to-int conversions that give
 * INT_MIN on NaN and overflow (as x86 does), contour guards, distances,
 * JudgeRoi, Otsu level, grey difference across an outline, polynomial fit. */
#include "sonolex/Tool.h"

/* Turning a binary image into one region: MyFillHole fills holes that do not
 * reach the edge; GetTargetRegion keeps the largest external outline (or
 * appends (0, 0) when there is none); GetTargetRegion1 keeps the outline that
 * is large and close to a reference outline's centre, by
 *   score = (area / sum of areas) * (sum of d / d), d = squared centre distance.
 * Image coordinates of the binary image. All are thread-safe except
 * RandomColor, which draws from the global generator `rng`. */
#include "sonolex/RegionSelection.h"

/* Axis measurement. LesionAxis finds the long axis (the principal direction's
 * chord through the outline) and the short axis (the longest chord roughly
 * across it) of a closed outline, at a working width of 102 columns unless
 * the mask is 60 to 139 columns wide; results are scaled back, truncated, to
 * the mask's frame. Set m_contour and m_size, then SetMask and SetCentroid
 * (or SetPara), then CalcLesionAxis or CalcOrganAxis. Lengths are
 * sqrtf(dx*dx + dy*dy) in pixels of that frame. The object keeps the long
 * axis' slope in m_longAxisSlope. Throws when the working mask is empty or
 * has no outline, and when the outline has no points. */
#include "sonolex/LesionAxis.h"

/* Level set. LBF evolves phi (negative inside) by local binary fitting:
 *   phi += 0.1 * (200 * dirac * curv + (laplacian(phi) - curv) - dirac * force)
 * with a 29 x 29 Gaussian (sigma 7) as the local window, 15 steps in RunLBF.
 * CV_64F throughout, in the pixels of the image handed in; the object holds
 * nothing, so one object may serve several threads. Where phi is flat the
 * unit normal is 0/0 and the result NaN, which RunLBF counts as inside: the
 * mirrored border makes that happen on every image, and RunLBF's outline is
 * then the image frame. Throws when the starting mask has no outline and on
 * matrices under 3 x 3. */
#include "sonolex/LBF.h"

/* Distances between point sets. Hausdorff::CalcPtsDistanceTest gives, from
 * each point of the first set to its nearest point of the second,
 *   d = sqrt(double(dx)^2 + double(dy)^2)
 * and keeps the mean, the largest and the pair that gives it (ties of the
 * largest fall as std::sort leaves them). Pixels of the points' own frame.
 * Use an object once: the mean is added to and never cleared. Throws on an
 * empty set. */
#include "sonolex/Hausdorff.h"

/* Feature and verdict objects. BUSFeature holds the grey region, the masks
 * drawn from the host's outlines and the values one measure leaves for the
 * next; Description holds private copies of the images and turns measures
 * into report categories. Both belong to one image; their methods must be
 * called in the order the entry points use, since later measures read what
 * earlier ones left. Description methods take a BUSFeature by value. */
#include "sonolex/BusFeature.h"
#include "sonolex/Description.h"

/* Texture. GLCM counts grey-level co-occurrences in a window around a pixel
 * and takes four measures of the normalised matrix p (levels x levels):
 *   energy = sum p^2, contrast = sum (i-j)^2 p,
 *   homogenity = sum p / (|i-j| + 1), entropy = -sum p log10 p.
 * Quantise first with GrayMagnitude (4, 8 or 16 levels: the byte shifted
 * right by 6, 5 or 4); CalcuOneGLCM indexes the matrix by the source bytes
 * and throws std::out_of_range on a byte at or above the level count, and
 * on an image under 3 x 3 when the window must shrink to 3 x 3. Windows are
 * odd (size 4 acts as 5), centred on (row, column), and become the 3 x 3
 * window held inside the image when they would leave it. Directions: 0
 * vertical, 1 down-right, 2 horizontal, 3 down-left. CalcuTextureEValue sums
 * the four directions' mean over every pixel (no division by the pixel
 * count); CalcuTextureImages gives it per pixel. Cost: four windows and two
 * normalisations per pixel. The object holds nothing: thread-safe. */
#include "sonolex/GLCM.h"

/* Contour sampling. PreprocessContours reduces the outline pixels (255) of
 * two CV_8UC1 frames, assigned by the caller to _frame[0] and _frame[1], to
 * ordered and thinned point lists in (column, row) image coordinates. Every
 * call appends: _pixels and _samples grow, so use one object per sampling.
 * The circular order (Point2D, OrdenamientoCircular) sorts by direction from
 * the lowest (smallest y, then x) pixel, nearest first along one direction;
 * it writes the process-wide pole `reference`, so it is NOT reentrant: do
 * not order, or sample in circular order, on two threads at once (the entry
 * points never use it). GetEllipseSamplePts, GetEllipseSamplePts0 and
 * GetSamplePts shuffle with cv::theRNG(): seed it (cv::theRNG().state = ...)
 * on the calling thread for a fixed result. OnBorder on a pixel outside the
 * frame fails its assertion in every build and aborts the process; every
 * other failure is an exception (a frame index other than 0 or 1,
 * std::invalid_argument for a point count of 0, cv::Exception from corner
 * detection on an empty frame). */
#include "sonolex/Point2D.h"
#include "sonolex/PreprocessContours.h"

#endif /* SONOLEX_HPP */
