#pragma once

#include <vector>

#include "RecognitionRigs.h"

// Skeletons in the conventions users bring (game-engine mannequins, bipeds, deform rigs, MikuMikuDance models,
// avatar and figure tools, capture files), built over one body so that only names, hierarchy, units, axes and
// pose differ from rig to rig. Each has its truth by the corpus's rules: helpers, twists and ends optional.
namespace conventions
{
std::vector<TruthRig> All();
} // namespace conventions
