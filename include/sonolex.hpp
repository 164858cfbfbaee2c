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
 * between objects, so separate objects may be used on separate threads, but
 * one object must not be used by two at once. The exceptions are the global
 * generator `rng` (RandomColor) and the circular order's pole `reference`
 * (contour sampling and the shape-context distance), named where they occur.
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

/* Edge analysis. GradientX and GradientY are central differences of a
 * CV_64FC1 matrix (one-sided on the first and last column or row). EVA is
 * the mean gradient strength, normalised to 0..1 over the image, in the band
 * of about five pixels either side of a closed outline:
 *   EVA = sum over the band of strength / (dilated outline area - eroded outline area)
 * (11 x 11 elliptic element; the image's outer frame is left out; a single
 * channel image of any depth). CalcuEdgeIndicator gives 1 / (1 + |g|^2)
 * (mode 1) or exp(-|g|^2) (mode 2). Conv2 is true convolution with zeros
 * outside the image (MATLAB's conv2 'same'), Correlation filters with the
 * kernel as it stands and reflected borders, GaussSmooth convolves with a
 * size x size Gaussian. All CV_64F in the image's pixels; no state, so all
 * are thread-safe; cv::Exception on a colour image in EVA and on matrices
 * under 2 x 2 in the gradients.
 * Fourier descriptors. CalcuFourierDescriptors normalises an outline's
 * spectrum for position, scale, rotation and start point (2 * count + 1
 * values, frequency k at position count + k); GetBackImageLi draws the
 * outline of `length` points the descriptors stand for, scaled by `scale`,
 * about `centre` (x real, y imaginary), into a new rows x cols CV_8UC1 image. */
#include "sonolex/BoundarySharpness.h"
#include "sonolex/FourierDescriptors.h"

/* The toolkit parts of the objects above, which no entry point uses:
 * - BUSFeature: GetPointsAngle (direction of a step, 0 to 2 pi radians, y
 *   down), CalAverageAngle, NormRadialLength (spread of the radii scaled by
 *   the largest: 0 for a circle), CalcuNrgs (the three radial figures, left
 *   in m_nrg, m_nrg2, m_nrg3), GetShapeFeature2 (hull and ellipse ratios,
 *   circularity, Fourier distance to the hull, left in the object),
 *   GetInnerEchoFeature and GetGrayDiff (grey step across the outline, grey
 *   levels), findTrackPoints (no effect), GetGbPosterEchoFeature (lesion
 *   mean and the mean of the 20 rows below its box), GetEchoFeatureUseHist
 *   (lesion pixels darker and not darker than the liver, histogram peak's
 *   distance from it), CalcuEchoHist and GetEchoHistMy (256-bin grey
 *   histogram under a mask, raw counts; std::invalid_argument on an image
 *   or mask it cannot count). Region coordinates.
 * - LesionAxis: GetLongAxisPts1 (a fan of five lines within 0.1 radian of
 *   the principal direction, the longest chord kept), GetShortAxisPts (one
 *   pass at the perpendicular), CalcLesionAxis2 (axes between the mean
 *   points of the outline on opposite sides of the given rotated rectangle,
 *   points taken by slope within 0.04 of a side's), CalcLesionAxis3 (short
 *   axis: the pair of outline points of greatest extent across the long
 *   axis of slope k, among those with |1 - slope * k| < 10000), both
 *   falling back to CalcLesionAxis, CorrectLesionAxis (two
 *   measurements reconciled through their axes' crossing) and the free
 *   CalcLineAndContourCrossPoint. Pixels of the frame handed in.
 * - Description: the metric family (roundness 4 pi A / P^2, tightness
 *   P^2 / A, hull metric A / hull area, Hu-moment and Fourier distances to
 *   the fitted ellipse, radial spread and gradient, shape-context distance)
 *   and the verdicts on them: ContourRegularity (1 oval, 2 round, 3
 *   irregular), ShapeDescriptionOld (1 parallel, 2 not), MarginDescription
 *   (1 circumscribed, 2 not), JudgeEchoType (1 one sharp histogram peak, 2
 *   spread), BoundaryDescription (1 abrupt when a value exceeds the
 *   caller's limit or is NaN, 2 not) and BoundaryDescription2 on a contour,
 *   GallBladderEcho, GallBladderEcho2 and LiverEchoUseHist (echo grades from
 *   BUSFeature's grey levels, its posterior band GetGbPosterEchoFeature and
 *   its histogram summary GetEchoFeatureUseHist), the free histogram
 *   thresholds GetThreshold2Crest and GetThreshold3Crest, and the SVM
 *   verdicts on a host model (cv::ml::SVM, declared only: include
 *   <opencv2/ml.hpp> and link opencv_ml to make one).
 *   m_contourArea and m_contourPerimeter are set by no operation: unless the
 *   host assigns them, roundness and tightness are 0 and CalcuCircularity
 *   is NaN. MatchContoursSC and ContourRegularity2 use the circular order
 *   and cv::theRNG(): not thread-safe; seed the generator for a fixed result.
 *   The other metrics touch only their object. */

#endif /* SONOLEX_HPP */
