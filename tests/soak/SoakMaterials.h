// SPDX-License-Identifier: MIT
#pragma once

#include "tests/soak/SoakPage.h"

// Movies, sounds, pictures and animations, each whole, cut off and damaged, and what is nothing.
std::vector<SoakMaterial> MakeSoakMaterials();
