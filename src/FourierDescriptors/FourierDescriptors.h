// The functions are part of the installed C++ surface; their declarations live there.
#pragma once

#include "sonolex/FourierDescriptors.h"
