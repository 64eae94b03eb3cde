// zytool info FILE: one line per frame with its geometry and attributes.

#include "cli/Verbs.h"

#include "cli/Tool.h"
#include "tavix/drivers/shape/ShapeTail.h"

#include <cstdio>
#include <string>

namespace zytool {
namespace {

std::string quoted(const char* text, size_t capacity) {
    std::string out = "\"";
    for (size_t i = 0; i < capacity && text[i]; ++i) {
        char c = text[i];
        if (c == '\n')
            out += "\\n";
        else if (c == '"' || c == '\\')
            out += std::string("\\") + c;
        else if (static_cast<unsigned char>(c) < 0x20)
            out += '?';
        else
            out += c;
    }
    return out + "\"";
}

void printFrame(int index, const TavixInfo& info) {
    printf("%4d %-24s %dx%dx%d", index, quoted(info.framename, sizeof info.framename).c_str(),
           info.width, info.height, info.bpp);
    printf("  centre %d,%d  default %d,%d", info.centerx, info.centery, info.defaultx,
           info.defaulty);
    if (info.bufferbpp <= 8) printf("  palette %d", info.numcolours);
    printf("  subtype 0x%02X", static_cast<unsigned>(info.subtype));
    if (info.packed) printf("  packed");
    if (info.attributes & kAttrMipLevel) printf("  mip-level");
    if (info.numhotspots > 0) printf("  hotspots %d", info.numhotspots);
    char kept[1024];
    bool shapeTail = ShapeTailSummary(&info, kept, sizeof kept) > 0;
    if (info.size > kTavixInfoSize && !shapeTail)
        printf("  kept-bytes %d", info.size - kTavixInfoSize);
    if (info.comment[0]) printf("  comment %s", quoted(info.comment, sizeof info.comment).c_str());
    printf("\n");
    if (shapeTail) printf("       %s\n", kept);
}

} // namespace

int runInfo(const Args& args) {
    if (args.positional.size() != 1) throw ToolError("usage: zytool info FILE");
    bindCodecLibrary();
    // Headers and directories only: listing a file never decodes its pixels.
    TavixReadResult file = readFileOrThrow(args.positional[0], true, false);
    TavixAbout about = driverAbout(file.driver);
    printf("%s: %.32s (%.16s), %zu frame%s\n", args.positional[0].c_str(), about.description,
           about.shortname, file.frames.size(), file.frames.size() == 1 ? "" : "s");
    for (size_t i = 0; i < file.frames.size(); ++i)
        printFrame(static_cast<int>(i), *file.frames[i].info);
    return file.ok ? 0 : 1;
}

} // namespace zytool
