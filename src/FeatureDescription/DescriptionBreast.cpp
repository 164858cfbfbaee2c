// Breast verdicts that the verdict object gives.
#include "FeatureDescription/Description.h"

int Description::BoundaryDescription2(float value)
{
    // NaN (a flat image around the outline) falls to 1.
    return value <= 8.0f ? 2 : 1;
}
