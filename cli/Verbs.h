#pragma once
// One function per zytool verb; main.cpp maps the verb names to them.

#include "codec/FrameIO.h"

#include <vector>

namespace zytool {

struct Args;

// Which frames a verb works on: all, or those --select EXPR names
// (ToolError "Invalid range." when the expression does not validate).
std::vector<bool> selectedFrames(const Args& args, const std::vector<TavixFrame>& frames);

int runFormats(const Args& args);
int runInfo(const Args& args);
int runConvert(const Args& args);
int runExport(const Args& args);
int runImport(const Args& args);
int runModules(const Args& args);
int runRun(const Args& args);
int runSelect(const Args& args);
int runMipmap(const Args& args);
int runCommand(const Args& args);
int runCommands(const Args& args);
int runQuantize(const Args& args);
int runDepth(const Args& args);

} // namespace zytool
