#pragma once
// One function per zytool verb; main.cpp maps the verb names to them.

namespace zytool {

struct Args;

int runFormats(const Args& args);
int runInfo(const Args& args);
int runConvert(const Args& args);
int runExport(const Args& args);
int runModules(const Args& args);

} // namespace zytool
