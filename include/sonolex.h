/*
 * sonolex: describes a lesion or organ on a B-mode ultrasound image in the
 * categories of a sonographer's report.
 *
 * The host has already found what is to be described. It calls one entry
 * point per image with a raw 8-bit image, a lesion outline and, for some
 * organs, an organ outline and the regions its own detection model found.
 * The entry writes a small record of verdicts into memory the host owns.
 *
 * Conventions shared by every entry point:
 *   - Images are 8 bits a channel, row by row with no padding between rows,
 *     `channels` bytes a pixel (1: grey; 3 or 4: blue, green, red[, ignored]).
 *     The buffer must hold width * height * channels bytes; it is only read.
 *   - Point arrays are in whole-image coordinates: x is the column, y the row.
 *   - A null image or a channel count other than 1, 3 or 4 returns at once
 *     and leaves the record untouched. A null record returns at once.
 *   - Otherwise the record (or the part of it an entry names) is cleared
 *     first, and each verdict is stored as soon as it is known. Any failure
 *     on the way ends the call quietly: verdicts already stored stay, later
 *     ones stay at their preset. A 0 in a field means "not reached" unless
 *     the field's own table gives 0 a meaning.
 *   - No entry point throws, keeps state between calls, logs, or keeps or
 *     frees the caller's memory. All are reentrant.
 *   - Some OpenCV passes inside a call (edge finding, morphology) may run on
 *     OpenCV's own worker threads. The library never changes the host's
 *     OpenCV settings; a host that runs many calls in parallel threads may
 *     call cv::setNumThreads(1) once to keep each call on its own thread.
 *
 * Records are fixed little-endian layouts of 32-bit fields (integers, and two
 * IEEE single-precision floats in GallBladderWallResult) with no padding.
 */
#ifndef SONOLEX_H
#define SONOLEX_H

#include <stdint.h>

#if defined(__GNUC__)
#define SONOLEX_API __attribute__((visibility("default")))
#else
#define SONOLEX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A point of an outline. 8 bytes. */
typedef struct MyPoint {
    int32_t x; /* byte 0: column */
    int32_t y; /* byte 4: row */
} MyPoint;

/* A region of interest, in whole-image coordinates. 16 bytes, passed by value. */
typedef struct RoiCoor {
    int32_t x;      /* byte 0: left column */
    int32_t y;      /* byte 4: top row */
    int32_t width;  /* byte 8: columns; 0 asks some entries to derive the region */
    int32_t height; /* byte 12: rows; 0 likewise */
} RoiCoor;

/* Both axes of a lesion as the host measured them. 32 bytes, passed by value.
 * Only differences of coordinates are used, so any frame serves. */
typedef struct lesionAxisPointEnd {
    MyPoint longStart;  /* byte 0: one end of the long axis */
    MyPoint longEnd;    /* byte 8: other end of the long axis */
    MyPoint shortStart; /* byte 16: one end of the short axis */
    MyPoint shortEnd;   /* byte 24: other end of the short axis */
} lesionAxisPointEnd;

/* ---- breast records begin ---- */
/* Verdicts on a breast lesion, written by BreastDescription and
 * BreastDescriptionHaveModelProcess. 24 bytes, six little-endian 32-bit ints.
 * The call clears all six first and stores each verdict as soon as it is
 * known, in the order echo, boundary, margin, calcification, orientation,
 * shape. A 0 left in a field means the call ended before that verdict
 * (orientation alone can also be 0 by calculation). */
typedef struct BreastResult {
    /* byte 0: shape of the outline, from its convexity defects and the ratio
     * of the host's two axis lengths.
     *   1: neither round nor markedly irregular: elongated (long over short
     *      axis at least 1.2) or with one to three shallow indentations;
     *   2: round or oval without any indentation (axis ratio below 1.2 and
     *      no defect deeper than 2 % of the lesion's width plus height);
     *   3: irregular: more than three such indentations, or deep ones. */
    int32_t shape;
    /* byte 4: orientation of the lesion, from the host's axes.
     *   1: parallel to the skin: short over long axis below 0.8 and the long
     *      axis within 30 degrees of the image rows;
     *   2: not parallel: roundish (short over long axis 0.8 or more) or the
     *      long axis steeper than 30 degrees;
     *   0: both axes degenerate (each has its two ends on one point). */
    int32_t orientation;
    /* byte 8: echo pattern inside the lesion, from its grey histogram
     * (saturated white left out).
     *   1: dominated by very dark pixels (more than three quarters at grey
     *      1 to 25: anechoic) or by one sharp peak (a uniform echo);
     *   2: spread over many grey levels: heterogeneous or mixed echo. */
    int32_t echo;
    /* byte 12: boundary, from the grey contrast between a 15-pixel band just
     * inside and one just outside the outline.
     *   1: abrupt interface: the bands differ clearly (contrast above 8),
     *      or both are perfectly flat;
     *   2: indistinct or halo: the bands hardly differ. */
    int32_t boundary;
    /* byte 16: margin, from the convexity defects of the outline against
     * the number of vertices of its polygon approximation.
     *   1: circumscribed: few or shallow defects for its polygon;
     *   2: not circumscribed: angular, microlobulated or spiculated, with
     *      enough deep defects for its number of vertices. */
    int32_t margin;
    /* byte 20: calcification.
     *   BreastDescription, from bright specks enclosed in the lesion:
     *     1: none found, or too few, too small or too dim;
     *     2: coarse: a large or strongly contrasting bright region, or only
     *        a few small specks;
     *     3: microcalcification: more small specks than the limit (two, or
     *        the number of large ones) and none strongly contrasting.
     *   BreastDescriptionHaveModelProcess, from the host model's regions:
     *     1: the model found no region;
     *     2: the regions cover more than 30 % of the lesion's pixel count,
     *        or every region is large;
     *     3: at least one small region (under 100 pixels, or under 0.6 %
     *        of the lesion's pixel count). */
    int32_t calcification;
} BreastResult;
/* ---- breast records end ---- */

/* ---- thyroid records begin ---- */
/* Verdicts on a thyroid nodule, written by ThyroidDescriptionModelAfterProcess.
 * 16 bytes. The call presets shape 0, echo 3, margin 0, calcification 0, and
 * a verdict the call does not reach keeps its preset. Unlike the other
 * records, 0 is a verdict of its own in every field, so a preset value does
 * not by itself say that a verdict was skipped. Fields are written in the
 * order calcification, echo, shape, margin; calcification is then cleared
 * when echo is 1. */
typedef struct ThyroidResult {
    /* byte 0, preset 0: 1 not wider than tall (the fitted ellipse's
     * horizontal side is less than about 1.1 times its vertical side, or the
     * bounding box is less than 1.08 times as wide as tall); 0 wider than
     * tall. */
    int32_t shape;
    /* byte 4, preset 3: echo of the nodule against the thyroid tissue
     * around it (ratio r of the means).
     * 0 anechoic: r below 0.41 and the nodule's mean grey at most 35;
     * 1 hyperechoic: r above 1.4;
     * 2 isoechoic: r above 0.96 up to 1.4;
     * 3 hypoechoic: r above 0.45 up to 0.96, or very dark but brighter than
     *   35, or a large or shadowing calcification, or a dark nodule with
     *   bright content;
     * 4 markedly hypoechoic: about as dark as the strap muscle, few bright
     *   spots. */
    int32_t echo;
    /* byte 8, preset 0. From the border when the outline has no deep
     * concavity:
     * 0 a strong grey step across the border (18 or more, either way), or
     *   a weaker step with edges over more than 0.13 of the outline;
     * 1 a moderately brighter surround (10 to 18 grey levels), or a weak
     *   step with edges over at most 0.13 of the outline.
     * From the outline's concavities when it has one:
     * 2 irregular: more than three deep concavities, or one deeper than
     *   0.45 of the half minor axis;
     * 3 lobulated: one to three concavities of moderate depth.
     * 4 extrathyroidal extension: the nodule runs along the gland's
     *   outline. */
    int32_t margin;
    /* byte 12, preset 0: 0 no calcification found (always 0 when echo is 1,
     * and when the host's model found nothing); 1 macrocalcification or few
     * deposits (a model area above 0.3 of the nodule, an acoustic shadow
     * below the deposits, or large bright spots); 2 microcalcifications (ten
     * or more small model deposits, or many small enclosed bright spots). */
    int32_t calcification;
} ThyroidResult;
/* ---- thyroid records end ---- */

/* ---- liver records begin ---- */
/* Verdicts on a liver lesion, written by LiverDescription. 16 bytes, four
 * little-endian signed 32-bit integers. 0 in any field means the call did
 * not reach that verdict. Fields are written in the order echo, shape,
 * boundary, echoTexture, so a call that failed part way leaves all zeros,
 * or echo alone, or echo and shape, or all but echoTexture. */
typedef struct LiverResult {
    /* byte 0: 1 regular outline (no concavity of the outline deeper than
     * 5 pixels from its convex hull), 2 irregular outline (at least one
     * concavity deeper than 5 pixels). Depths are in pixels, whatever the
     * lesion's size. */
    int32_t shape;
    /* byte 4: echo against the liver tissue in a ring around the lesion,
     * by the ratio of their mean greys:
     *   1 hypoechoic: clearly darker than the liver (ratio below 0.6, or
     *     0.6 to 0.7 with little bright content);
     *   2 isoechoic or slightly darker (ratio above 0.7 up to 1.1, or 0.6
     *     to 0.7 with much bright content);
     *   3 hyperechoic: brighter than the liver (ratio above 1.1);
     *   4 markedly hyperechoic: at least twice the liver's grey with a mean
     *     grey of 80 or more, or 1.5 to 2 times and small against the liver
     *     or with more than a tenth of its pixels at grey 200 or above.
     * A lesion with no liver around it compares against a liver grey of 0:
     * a lesion grey above 0 then counts as infinitely brighter. */
    int32_t echo;
    /* byte 8: 1 clear border: the mean grey of a 7-pixel band outside the
     * outline differs from that of a 7-pixel band inside it by 10 or more,
     * or more than 19% of a narrow band along the outline is edge;
     * 2 unclear border: a smaller grey step and few edges. */
    int32_t boundary;
    /* byte 12: 1 homogeneous inner echo, 2 heterogeneous: the share of
     * lesion pixels at or above the lesion's mean grey + 1.8 deviations
     * (truncated), not counting those within about 3 pixels of the
     * outline, reaches
     * 2.5% (region wider and taller than 150 pixels), 3% (one of the two
     * above 150) or 3.5% (neither). A lesion of one uniform grey has a
     * deviation of 0, so all its inner pixels count and it comes out 2. */
    int32_t echoTexture;
} LiverResult;
/* ---- liver records end ---- */

/* ---- carotid records begin ---- */
/* Verdicts on a carotid plaque and the vessel's inner diameter, written by
 * CarotidPlaqueDescription. 28 bytes.
 * Only position and echo are cleared, and only once the call has fixed its
 * region around the vessel; every other field keeps the caller's value until
 * it is written. The four diameter fields are written together, after the
 * echo and position verdicts, or not at all. */
typedef struct PlaqueResult {
    /* byte 0: where the plaque sits in the vessel, judged from the centre of
     * the plaque's bounding box against the vessel outline:
     *   1 on the upper (near-field) wall: for an elongated vessel section,
     *     the plaque's centre is nearer the upper side, or as near to both;
     *   2 on the lower (far-field) wall: nearer the lower side;
     *   3 on a side wall of a nearly square vessel section (proportions
     *     between 0.5 and 1.8), the centre nearer the section's sides than
     *     its top and bottom as the measure compares them;
     *   0 not reached. */
    int32_t position;
    /* byte 4: echo of the plaque against its own grey levels:
     *   1 low echo (soft plaque): a dark plaque (mean plus 2.2 standard
     *     deviations at most 119), or one with neither a large bright share
     *     nor very bright spots;
     *   2 uniformly bright: mean grey above 60 and more than 65% of the
     *     plaque above its Otsu level;
     *   3 mixed echo: a large bright share, or very bright spots (above the
     *     mean plus 2.2 standard deviations) in more than 3 to 4% of it;
     *   0 not reached. */
    int32_t echo;
    /* byte 8: reserved. Never written and never cleared: the caller's value stays. */
    int32_t reserved;
    /* bytes 12 to 24: the ends of the vessel's inner diameter, the longer of
     * its two axes stretched to where its line meets the vessel outline, in
     * whole-image coordinates. Written together after echo and position;
     * on a failed call they keep the caller's values. */
    int32_t firstX;  /* byte 12: x (column) of the first end */
    int32_t firstY;  /* byte 16: y (row) of the first end */
    int32_t secondX; /* byte 20: x of the second end */
    int32_t secondY; /* byte 24: y of the second end */
} PlaqueResult;
/* ---- carotid records end ---- */

/* ---- gallwall records begin ---- */
/* Verdicts on a gall bladder wall, written by GallWallDescription. 8 bytes.
 * The wall is the band between the outer outline of the gall bladder and the
 * outline of its lumen.
 *
 * Read wallVerdict first. thickenVerdict is never cleared by the call: it is
 * written only once the thickening grade is known, just before wallVerdict.
 * While wallVerdict is 0 the call may have stopped before that point, so
 * thickenVerdict may still hold whatever the host left in it; take it as valid
 * only when wallVerdict is not 0. */
typedef struct GallWallResult {
    /* byte 0: 1 normal wall (thin, even echo, a small share of each chord
     * across the organ), 2 abnormal wall (it survives three 3x3 erosions with
     * at least 12% of its pixels, more than 9.5% of it is brighter than its
     * mean plus 1.8 standard deviations, or it fills more than a third of a
     * chord across the organ), 0 when the call did not reach this verdict. */
    int32_t wallVerdict;
    /* byte 4: 1 no thickening (less than 15% of the wall survives three 3x3
     * erosions), 3 focal thickening (the thinnest of about 40 radial wall
     * measures is under a tenth of the thickest, and the thickest exceeds 35
     * pixels), 2 diffuse thickening (any other wall that survives the
     * erosions). Untouched by a call that stops before it is reached. */
    int32_t thickenVerdict;
} GallWallResult;
/* ---- gallwall records end ---- */

/* ---- gallbladder records begin ---- */
/* The gall bladder wall measured against the organ's long axis, written by
 * GallBladderWallDescription. 32 bytes, little-endian.
 *
 * The lumen is outlined inside the organ, and on one side of the long axis
 * each point of the lumen outline is matched with the nearest point of the
 * organ outline; the distances are the wall's thickness as seen from the
 * lumen. Distances are in pixels of the region of interest (the caller's
 * pixels: the working scale is undone before measuring).
 *
 * Only wallVerdict is cleared by the call. Every other field keeps what the
 * host left in it until the call has a verdict, and all of them are then
 * written together, after wallVerdict. Read the rest only when wallVerdict
 * is not 0. */
typedef struct GallBladderWallResult {
    /* byte 0: 1 the lumen keeps close to the organ outline (the largest
     * nearest-point distance is at most a quarter of the organ outline's mean
     * distance from the long axis); 2 it does not, or after trimming the
     * ends one side had no outline left to compare; 0 the call did not
     * reach a verdict. */
    int32_t wallVerdict;
    /* byte 4: never read or written. */
    int32_t reserved;
    /* byte 8: the largest nearest-point distance from the lumen outline to
     * the organ outline, in region pixels. 0 when the verdict is 2 because a
     * side was empty. */
    float maxDistance;
    /* byte 12: the mean of those nearest-point distances, in region pixels;
     * 0 likewise. */
    float meanDistance;
    /* bytes 16 to 28: the pair that gives maxDistance, in whole-image
     * coordinates: a point of the lumen outline and its nearest point of the
     * organ outline. (0, 0) plus the region's corner when the verdict is 2
     * because a side was empty. */
    int32_t firstX;  /* byte 16: x (column) of the lumen point */
    int32_t firstY;  /* byte 20: y (row) of the lumen point */
    int32_t secondX; /* byte 24: x of the organ outline point */
    int32_t secondY; /* byte 28: y of the organ outline point */
} GallBladderWallResult;
/* ---- gallbladder records end ---- */

/* ---- breast entries begin ---- */
/* Describes a breast lesion on a B-mode image: echo, boundary, margin and
 * calcification from the image, orientation from the host's axes, shape
 * from both.
 *   image      whole image, width * height * channels bytes, row by row
 *              without padding; read only, never kept.
 *   channels   1 (grey), 3 (blue, green, red) or 4 (the fourth ignored).
 *   width, height  columns and rows of the whole image.
 *   roi        region to work on, whole-image coordinates. A zero width or
 *              height asks the call to derive it: the lesion's bounding box
 *              widened by 10 pixels a side and clipped to the image short of
 *              its last row and column, then widened by 10 pixels a side
 *              again without clipping. A given region is used as it stands.
 *              A region that does not lie inside the image ends the call.
 *   lesionPointCount, lesionPoints  lesion outline, whole-image
 *              coordinates, at least five points; read only.
 *   axis       the lesion's long and short axis as the host measured them;
 *              only coordinate differences are used, so any frame serves.
 *   result     written by the call.
 * A null image or record, or a channel count other than 1, 3 or 4, returns
 * at once with the record untouched. Otherwise the record is cleared, and a
 * call that fails on the way (negative count, fewer than five points, region
 * outside the image, null points with a positive count) keeps the verdicts
 * stored so far and leaves the rest 0. An outline that touches itself (a
 * spur one pixel wide that goes out and back, or two sides that meet) can
 * make the margin's convexity measure fail, as OpenCV refuses hull indices
 * that are not monotonous: echo and boundary are then kept and the other
 * four fields stay 0. */
SONOLEX_API void BreastDescription(const unsigned char* image, int32_t channels, int32_t width, int32_t height,
                                   RoiCoor roi, int32_t lesionPointCount, const MyPoint* lesionPoints,
                                   lesionAxisPointEnd axis, BreastResult* result);

/* The same six verdicts, with calcification taken from the regions the
 * host's own detection model found instead of from the image.
 *   image, channels, width, height, lesionPointCount, lesionPoints, axis,
 *   result     as for BreastDescription.
 *   roi        region to work on, whole-image coordinates; width and height
 *              must both be non-zero (a zero one returns with the record
 *              untouched). It is never derived or clipped; a region that
 *              does not lie inside the image leaves the record all 0.
 *   modelContourCount  number of model regions; 0 grades calcification 1,
 *              and the two arrays may then be null.
 *   modelContourSizes  point count of each region; read only. A negative
 *              entry leaves the record all 0.
 *   modelPoints  all region outlines one after the other, whole-image
 *              coordinates, closed; read only.
 * A negative modelContourCount keeps echo, boundary and margin and leaves
 * the rest 0. The lesion outline must have at least eleven points, and so
 * must the outline of its filled convex hull; otherwise the record stays
 * all 0. So does an outline that touches itself where the convexity measure
 * refuses it (see BreastDescription): here that measure runs before the
 * first verdict. */
SONOLEX_API void BreastDescriptionHaveModelProcess(const unsigned char* image, int32_t channels, int32_t width,
                                                   int32_t height, RoiCoor roi, int32_t lesionPointCount,
                                                   const MyPoint* lesionPoints, int32_t modelContourCount,
                                                   const int32_t* modelContourSizes, const MyPoint* modelPoints,
                                                   lesionAxisPointEnd axis, BreastResult* result);
/* ---- breast entries end ---- */

/* ---- thyroid entries begin ---- */
/* Describes a thyroid nodule: shape, echo, margin and calcification.
 *
 *   image              whole image, read only (see the conventions above).
 *   channels           1, 3 or 4. With 3 or 4 the brightest of the first
 *                      three planes (greatest sum, first on a tie) is used
 *                      as it stands; no colour conversion, a fourth plane
 *                      is never used.
 *   width, height      columns and rows of the whole image.
 *   organPointCount    points of the thyroid outline; 0 returns at once.
 *   organPoints        thyroid outline, whole-image coordinates. Points
 *                      outside the image are clipped to its first or last
 *                      column or row, and the clipped coordinates are
 *                      WRITTEN BACK into this array.
 *   lesionPointCount   points of the nodule outline; 0 returns at once.
 *   lesionPoints       nodule outline, whole-image coordinates, read only.
 *   modelContourCount  regions the host's calcification model found; 0 or
 *                      less means none.
 *   modelContourSizes  modelContourCount point counts, read only.
 *   modelPoints        the model's outlines one after the other, whole-image
 *                      coordinates, read only.
 *   roi                region of interest in whole-image coordinates, used
 *                      as given (no clipping, no margin); it must lie inside
 *                      the image and hold the nodule.
 *   result             written by the call.
 *
 * A null image or result, a channel count other than 1, 3 or 4, or a zero
 * point count for either outline returns at once with the record untouched.
 * Otherwise the record is preset (shape 0, echo 3, margin 0, calcification
 * 0) and each verdict is stored as it is reached. A failure on the way (a
 * region leaving the image, a negative count, a null array with a positive
 * count, an outline too short for an ellipse) ends the call quietly: fields
 * not reached keep their preset, and organ points already clipped stay
 * written back. */
SONOLEX_API void ThyroidDescriptionModelAfterProcess(const unsigned char* image, int channels, int width, int height,
                                                     int organPointCount, MyPoint* organPoints,
                                                     int lesionPointCount, const MyPoint* lesionPoints,
                                                     int modelContourCount, const int* modelContourSizes,
                                                     const MyPoint* modelPoints, RoiCoor roi,
                                                     ThyroidResult* result);
/* ---- thyroid entries end ---- */

/* ---- liver entries begin ---- */
/* LiverDescription: describes a liver lesion against the liver around it.
 *
 *   image            whole image, width * height * channels bytes; read only.
 *   channels         1 (grey), 3 (blue, green, red) or 4 (fourth ignored).
 *   width, height    columns and rows of the whole image.
 *   roi              region of interest in whole-image coordinates, used as
 *                    given: it must lie inside the image (no clipping, no
 *                    margin) and hold the lesion.
 *   organPointCount, organPoints
 *                    liver outline in whole-image coordinates; read only.
 *                    It may be empty (count 0): the liver grey is then 0.
 *   lesionPointCount, lesionPoints
 *                    lesion outline in whole-image coordinates; read only.
 *                    Parts outside `roi` are cut away.
 *   result           the record; written as described below.
 *
 * Both outlines are filled and replaced by the outer contour of the filled
 * shape, so point order does not matter. A shape cut into several pieces
 * (by the edge of `roi` or of the image) keeps all of them for the grey
 * measures, but only the piece whose top edge lies lowest gives the
 * outline, area, ellipse and echo rectangle. A filled lesion that touches
 * itself (a neck one pixel wide) can make the shape measure fail: the
 * record then holds the echo alone.
 *
 * A null image, a channel count other than 1, 3 or 4, or a null result
 * returns at once and leaves the record untouched. Otherwise all 16 bytes
 * are cleared first and each verdict is stored as soon as it is known.
 * A failure leaves the verdicts not yet reached at 0: all four for a region
 * not inside the image, a negative point count, a null point array with a
 * positive count, or a lesion whose filled outline has fewer than five
 * points. */
SONOLEX_API void LiverDescription(const unsigned char* image, int channels, int width, int height, RoiCoor roi,
                                  int organPointCount, const MyPoint* organPoints, int lesionPointCount,
                                  const MyPoint* lesionPoints, LiverResult* result);
/* ---- liver entries end ---- */

/* ---- carotid entries begin ---- */
/* Describes a carotid plaque: its echo, its position in the vessel, and the
 * ends of the vessel's inner diameter.
 *
 *   image, channels, width, height: the whole image (see the conventions
 *       above); read only.
 *   roi: ignored; the region is always cut around the chosen vessel, 10
 *       pixels wider on each side and clipped so that it never reaches the
 *       image's last row or column.
 *   organContourCount: how many vessel outlines organPoints holds. Below 2
 *       (0 and negative included), all organPointCount points form one
 *       vessel and organContourSizes is not read (it may be null).
 *       With 2 or more, the vessel is the first outline, in the caller's
 *       order, whose filled area overlaps more than a quarter of the filled
 *       plaque; when none does, all organPointCount points are taken as one
 *       outline, whatever their packing.
 *   organContourSizes: organContourCount point counts, one per outline;
 *       read only. Sizes that run past organPointCount end the call.
 *   organPointCount, organPoints: all vessel outlines one after another,
 *       whole-image coordinates; read only.
 *   lesionPointCount, lesionPoints: plaque outline, whole-image
 *       coordinates; read only.
 *   result: written as PlaqueResult describes; a null result returns at once.
 *
 * A failure before the region is fixed (a negative count, a null point
 * array with a positive count, bad sizes) leaves all 28 bytes as the caller
 * had them. A later failure leaves position and echo 0, or echo alone, or
 * both, and the diameter fields as the caller had them. Bytes 8 to 11 are
 * never touched. */
SONOLEX_API void CarotidPlaqueDescription(const unsigned char* image, int channels, int width, int height,
                                          RoiCoor roi, int organContourCount, const int* organContourSizes,
                                          int organPointCount, const MyPoint* organPoints, int lesionPointCount,
                                          const MyPoint* lesionPoints, PlaqueResult* result);
/* ---- carotid entries end ---- */

/* ---- gallwall entries begin ---- */
/* Grades a gall bladder wall: whether it is normal and whether, and how, it
 * is thickened.
 *   image, channels, width, height: the whole image, as described at the top
 *       of this header; read only.
 *   outerPointCount, outerPoints: outer outline of the gall bladder, closed,
 *       in whole-image coordinates; read only. The working region is its
 *       bounding rectangle widened by 8 pixels on each side; a side clipped at
 *       the left or top edge gives its margin to the right or bottom, and the
 *       region is then cut at the right and bottom edges of the image.
 *   innerPointCount, innerPoints: outline of the lumen, inside the first one,
 *       in whole-image coordinates; read only. It needs at least 40 points.
 *   result: written as described below; owned by the host.
 * A null image or a channel count other than 1, 3 or 4, or a null result,
 * returns at once and writes nothing. Otherwise wallVerdict is set to 0 first,
 * thickenVerdict is written when the thickening is graded and wallVerdict
 * last. A call that fails (negative count, null outline with a positive
 * count, an outer outline of fewer than five points, a region outside the
 * image, a lumen outline of fewer than 40 points, a chord across the organ
 * that meets no wall) leaves wallVerdict 0 and thickenVerdict either as the
 * host left it or, for a failure after grading, holding the thickening
 * grade. */
SONOLEX_API void GallWallDescription(const unsigned char* image, int channels, int width, int height,
                                     int outerPointCount, const MyPoint* outerPoints, int innerPointCount,
                                     const MyPoint* innerPoints, GallWallResult* result);
/* ---- gallwall entries end ---- */

/* ---- gallbladder entries begin ---- */
/* Measures a gall bladder wall against the organ's long axis: outlines the
 * lumen with a level set inside the organ, closes narrow gaps in that
 * outline, and compares it with the organ outline on one side of the axis.
 *   image, channels, width, height: the whole image, as described at the top
 *       of this header; read only.
 *   roi: region of interest in whole-image coordinates, used exactly as
 *       given (no clipping, no margin). It must lie inside the image.
 *   organPointCount, organPoints: organ outline in whole-image coordinates;
 *       read only. A negative count, or a null array with a positive count,
 *       ends the call.
 *   result: written as GallBladderWallResult describes; owned by the host.
 * A null image or result, or a channel count other than 1, 3 or 4, returns
 * at once and writes nothing. Otherwise wallVerdict is set to 0 first, and
 * bytes 4 to 31 keep the host's values unless a verdict is reached.
 *
 * In this release the organ outline is not yet taken into the measurement:
 * the call drops the given points before the organ's mask is built, finds no
 * organ to measure, and ends with wallVerdict 0 and bytes 4 to 31 as the
 * host left them, whatever the image and outline. Hosts should treat
 * wallVerdict 0 as "no measurement". */
SONOLEX_API void GallBladderWallDescription(const unsigned char* image, int channels, int width, int height,
                                            RoiCoor roi, int organPointCount, const MyPoint* organPoints,
                                            GallBladderWallResult* result);
/* ---- gallbladder entries end ---- */

#ifdef __cplusplus
}
#endif

#endif /* SONOLEX_H */
