// The class is part of the installed C++ surface; its declaration lives there.
#pragma once

#include "sonolex/Point2D.h"
