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
 * BreastDescriptionHaveModelProcess. 24 bytes. 0 in any field means the
 * call did not reach that verdict (orientation can also be 0 by
 * calculation). Fields are written in the order echo, boundary, margin,
 * calcification, orientation, shape. */
typedef struct BreastResult {
    /* byte 0: 1 regular (oval or round, smooth outline), 2 lobulated or
     * moderately irregular, 3 irregular. */
    int32_t shape;
    /* byte 4: 1 parallel to the skin (wider than tall), 2 not parallel
     * (taller than wide), 0 when the host's axes are degenerate. */
    int32_t orientation;
    /* byte 8: 1 hypoechoic or anechoic (darker than the surrounding
     * tissue), 2 isoechoic, hyperechoic or mixed. */
    int32_t echo;
    /* byte 12: 1 abrupt interface (sharp contrast at the border),
     * 2 echogenic halo or indistinct border. */
    int32_t boundary;
    /* byte 16: 1 circumscribed, 2 not circumscribed (indistinct, angular,
     * microlobulated or spiculated). */
    int32_t margin;
    /* byte 20: 1 no calcification, 2 coarse calcification (large bright
     * regions), 3 microcalcification (small bright specks). */
    int32_t calcification;
} BreastResult;
/* ---- breast records end ---- */

/* ---- thyroid records begin ---- */
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
/* ---- carotid records end ---- */

/* ---- gallwall records begin ---- */
/* ---- gallwall records end ---- */

/* ---- breast entries begin ---- */
/* ---- breast entries end ---- */

/* ---- thyroid entries begin ---- */
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
/* ---- carotid entries end ---- */

/* ---- gallwall entries begin ---- */
/* ---- gallwall entries end ---- */

#ifdef __cplusplus
}
#endif

#endif /* SONOLEX_H */
