#pragma once
// What zytool's quantize and depth verbs share: the --dither option and
// frames made from the library's results.

#include "cli/Tool.h"
#include "imaging/module/module.h"

namespace zytool {

// --dither none|floyd|burkes|stucki (none when absent).
int32_t ditherOption(const Args& args);

// A frame holding a library result (record and pixels), rows padded as
// the codec binding expects.
TavixFrame frameFromResult(const ModuleResult& result);

// Writes the frames to `output` with `driver`, atomically.
void writeFrames(const std::string& output, int driver, const std::vector<TavixFrame>& frames);

} // namespace zytool
