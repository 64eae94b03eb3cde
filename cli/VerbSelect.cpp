// zytool select EXPR FILE: the indices of the frames a range expression
// selects, and the --select option every frame verb shares.

#include "cli/Verbs.h"

#include "app/doc/RangeExpression.h"
#include "cli/Tool.h"

#include <cstdio>
#include <cstring>

namespace zytool {
namespace {

std::vector<int32_t> selectIndices(const std::string& expression,
                                   const std::vector<TavixFrame>& frames) {
    std::vector<std::string> names;
    for (const TavixFrame& frame : frames)
        names.emplace_back(frame.info->framename,
                           strnlen(frame.info->framename, sizeof frame.info->framename));
    std::optional<std::vector<int32_t>> indices = RangeExpression::SelectIndices(expression, names);
    if (!indices) throw ToolError("Invalid range.");
    return *indices;
}

} // namespace

std::vector<bool> selectedFrames(const Args& args, const std::vector<TavixFrame>& frames) {
    if (!args.has("select")) return std::vector<bool>(frames.size(), true);
    std::vector<bool> chosen(frames.size(), false);
    for (int32_t index : selectIndices(args.option("select"), frames))
        chosen[static_cast<size_t>(index)] = true;
    return chosen;
}

int runSelect(const Args& args) {
    if (args.positional.size() != 2) throw ToolError("usage: zytool select EXPR FILE");
    bindCodecLibrary();
    TavixReadResult file = readFileOrThrow(args.positional[1], true);
    std::string line;
    for (int32_t index : selectIndices(args.positional[0], file.frames)) {
        if (!line.empty()) line += ' ';
        line += std::to_string(index);
    }
    printf("%s\n", line.c_str());
    return 0;
}

} // namespace zytool
