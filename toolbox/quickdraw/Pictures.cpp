// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Pictures.h"
