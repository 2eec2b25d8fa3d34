// SPDX-License-Identifier: MIT
#include "toolbox/drag/Drag.h"
