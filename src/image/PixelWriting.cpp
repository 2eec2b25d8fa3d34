// SPDX-License-Identifier: MIT
#include "src/image/PixelWriting.h"
