// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PictureRecorder.h"
