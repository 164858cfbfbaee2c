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
 *
 * Records are fixed little-endian layouts of 32-bit integers with no padding.
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
/* ---- thyroid records end ---- */

/* ---- liver records begin ---- */
/* ---- liver records end ---- */

/* ---- carotid records begin ---- */
/* ---- carotid records end ---- */

/* ---- gallwall records begin ---- */
/* ---- gallwall records end ---- */

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
 * stored so far and leaves the rest 0. */
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
 * all 0. */
SONOLEX_API void BreastDescriptionHaveModelProcess(const unsigned char* image, int32_t channels, int32_t width,
                                                   int32_t height, RoiCoor roi, int32_t lesionPointCount,
                                                   const MyPoint* lesionPoints, int32_t modelContourCount,
                                                   const int32_t* modelContourSizes, const MyPoint* modelPoints,
                                                   lesionAxisPointEnd axis, BreastResult* result);
/* ---- breast entries end ---- */

/* ---- thyroid entries begin ---- */
/* ---- thyroid entries end ---- */

/* ---- liver entries begin ---- */
/* ---- liver entries end ---- */

/* ---- carotid entries begin ---- */
/* ---- carotid entries end ---- */

/* ---- gallwall entries begin ---- */
/* ---- gallwall entries end ---- */

#ifdef __cplusplus
}
#endif

#endif /* SONOLEX_H */
