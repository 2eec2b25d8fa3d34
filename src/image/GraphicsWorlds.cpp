// SPDX-License-Identifier: MIT
#include "src/image/GraphicsWorlds.h"
