// zytool convert IN... OUT and zytool export IN DIR: move frames between
// files through the codec library, never leaving a partial file behind.

#include "cli/Verbs.h"

#include "app/cmds/ExportCmd.h"

#include "cli/Tool.h"
#include "codec/FrameIO.h"

#include <cstdio>
#include <cstring>
#include <set>
#include <sys/stat.h>

namespace zytool {
namespace {

std::vector<TavixFrame> readAll(const std::vector<std::string>& inputs) {
    std::vector<TavixFrame> frames;
    for (const std::string& input : inputs) {
        TavixReadResult file = readFileOrThrow(input);
        // A lone unnamed frame takes its file's name, as the editor's import does.
        if (file.frames.size() == 1 && file.frames[0].info->framename[0] == 0) {
            std::string name = baseName(input);
            snprintf(file.frames[0].info->framename, sizeof file.frames[0].info->framename, "%s",
                     name.c_str());
        }
        for (TavixFrame& frame : file.frames)
            frames.push_back(std::move(frame));
    }
    return frames;
}

void writeOrThrow(const std::string& path, int driver,
                  const std::vector<const TavixFrame*>& frames) {
    std::string error;
    if (!TavixWriteFileSafely(path, driver, frames, error))
        throw ToolError("cannot write '" + path + "': " + error);
}

} // namespace

int runConvert(const Args& args) {
    if (args.positional.size() < 2)
        throw ToolError("usage: zytool convert IN... OUT [--format NAME]");
    bindCodecLibrary();
    const std::string output = args.positional.back();
    int driver = outputDriver(output, args.option("format"));
    std::vector<std::string> inputs(args.positional.begin(), args.positional.end() - 1);
    std::vector<TavixFrame> frames = readAll(inputs);
    if (frames.empty()) throw ToolError("the input holds no images");
    TavixAbout about = driverAbout(driver);
    std::vector<bool> chosen = selectedFrames(args, frames);
    std::vector<const TavixFrame*> list;
    for (size_t i = 0; i < frames.size(); ++i)
        if (chosen[i]) list.push_back(&frames[i]);
    if (list.empty()) throw ToolError("the selection holds no frames");
    if (list.size() > 1 && !(about.caps & kCapMultiImage))
        throw ToolError(std::string("the ") + about.shortname +
                        " format holds one image per file; use 'zytool export' to write each frame "
                        "to its own file");
    writeOrThrow(output, driver, list);
    return 0;
}

int runExport(const Args& args) {
    if (args.positional.size() != 2) throw ToolError("usage: zytool export IN DIR [--format NAME]");
    bindCodecLibrary();
    const std::string folder = args.positional[1];
    const std::string format = args.option("format", "png");
    int driver = outputDriver(std::string(), format);
    TavixAbout about = driverAbout(driver);
    std::string extension = about.extensions[0][0]
                                ? std::string(about.extensions[0], strnlen(about.extensions[0], 8))
                                : "";
    TavixReadResult file = readFileOrThrow(args.positional[0]);
    std::vector<bool> chosen = selectedFrames(args, file.frames);
    mkdir(folder.c_str(), 0777);
    const int nameFormat =
        static_cast<int>(strtol(args.option("name-format", "0").c_str(), nullptr, 10));
    if (nameFormat < 0 || nameFormat > 3) throw ToolError("--name-format takes 0 to 3");
    std::set<std::string> used;
    int number = 0; // the running number among the exported frames, as the editor counts
    for (size_t i = 0; i < file.frames.size(); ++i) {
        if (!chosen[i]) continue;
        const TavixInfo& info = *file.frames[i].info;
        const std::string base = ExportFileName(
            std::string(info.framename, strnlen(info.framename, sizeof info.framename)), number++,
            nameFormat);
        std::string name = base;
        for (int n = 1; !used.insert(name).second; ++n)
            name = base + "_" + std::to_string(n);
        writeOrThrow(folder + "/" + name + extension, driver, {&file.frames[i]});
    }
    return 0;
}

} // namespace zytool
