// SPDX-License-Identifier: MIT
#include "src/image/ImageFunctions.h"
