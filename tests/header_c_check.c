/* The public header compiles as C, and its records keep their byte layout. */
#include <stddef.h>
#include "sonolex.h"

_Static_assert(sizeof(MyPoint) == 8, "MyPoint is 8 bytes");
_Static_assert(offsetof(MyPoint, y) == 4, "MyPoint.y at byte 4");
_Static_assert(sizeof(RoiCoor) == 16, "RoiCoor is 16 bytes");
_Static_assert(offsetof(RoiCoor, y) == 4 && offsetof(RoiCoor, width) == 8 && offsetof(RoiCoor, height) == 12,
               "RoiCoor fields");
_Static_assert(sizeof(lesionAxisPointEnd) == 32, "lesionAxisPointEnd is 32 bytes");
_Static_assert(offsetof(lesionAxisPointEnd, longEnd) == 8 && offsetof(lesionAxisPointEnd, shortStart) == 16 &&
                   offsetof(lesionAxisPointEnd, shortEnd) == 24,
               "lesionAxisPointEnd fields");

/* ---- breast records begin ---- */
_Static_assert(sizeof(BreastResult) == 24, "BreastResult is 24 bytes");
_Static_assert(offsetof(BreastResult, orientation) == 4 && offsetof(BreastResult, echo) == 8 &&
                   offsetof(BreastResult, boundary) == 12 && offsetof(BreastResult, margin) == 16 &&
                   offsetof(BreastResult, calcification) == 20,
               "BreastResult fields");
/* ---- breast records end ---- */

/* ---- thyroid records begin ---- */
_Static_assert(sizeof(ThyroidResult) == 16, "ThyroidResult is 16 bytes");
_Static_assert(offsetof(ThyroidResult, shape) == 0 && offsetof(ThyroidResult, echo) == 4 &&
                   offsetof(ThyroidResult, margin) == 8 && offsetof(ThyroidResult, calcification) == 12,
               "ThyroidResult fields");
/* ---- thyroid records end ---- */

/* ---- liver records begin ---- */
_Static_assert(sizeof(LiverResult) == 16, "LiverResult is 16 bytes");
_Static_assert(offsetof(LiverResult, shape) == 0 && offsetof(LiverResult, echo) == 4 &&
                   offsetof(LiverResult, boundary) == 8 && offsetof(LiverResult, echoTexture) == 12,
               "LiverResult fields");
/* ---- liver records end ---- */

/* ---- carotid records begin ---- */
_Static_assert(sizeof(PlaqueResult) == 28, "PlaqueResult is 28 bytes");
_Static_assert(offsetof(PlaqueResult, position) == 0 && offsetof(PlaqueResult, echo) == 4 &&
                   offsetof(PlaqueResult, reserved) == 8 && offsetof(PlaqueResult, firstX) == 12 &&
                   offsetof(PlaqueResult, firstY) == 16 && offsetof(PlaqueResult, secondX) == 20 &&
                   offsetof(PlaqueResult, secondY) == 24,
               "PlaqueResult fields");
/* ---- carotid records end ---- */

/* ---- gallwall records begin ---- */
_Static_assert(sizeof(GallWallResult) == 8, "GallWallResult is 8 bytes");
_Static_assert(offsetof(GallWallResult, wallVerdict) == 0 && offsetof(GallWallResult, thickenVerdict) == 4,
               "GallWallResult fields");
/* ---- gallwall records end ---- */

/* ---- gallbladder records begin ---- */
_Static_assert(sizeof(GallBladderWallResult) == 32, "GallBladderWallResult is 32 bytes");
_Static_assert(offsetof(GallBladderWallResult, wallVerdict) == 0 && offsetof(GallBladderWallResult, reserved) == 4 &&
                   offsetof(GallBladderWallResult, maxDistance) == 8 &&
                   offsetof(GallBladderWallResult, meanDistance) == 12 &&
                   offsetof(GallBladderWallResult, firstX) == 16 && offsetof(GallBladderWallResult, firstY) == 20 &&
                   offsetof(GallBladderWallResult, secondX) == 24 && offsetof(GallBladderWallResult, secondY) == 28,
               "GallBladderWallResult fields");
_Static_assert(sizeof(float) == 4, "maxDistance and meanDistance are 32-bit floats");
/* ---- gallbladder records end ---- */

int sonolex_header_c_check(void);
int sonolex_header_c_check(void) { return (int)sizeof(BreastResult); }
