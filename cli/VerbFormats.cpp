// zytool formats: the codec library's drivers and what each can do.

#include "cli/Verbs.h"

#include "cli/Tool.h"
#include "codec/TavixBinding.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace zytool {
namespace {

void appendListItem(std::string& list, const std::string& item) {
    if (!list.empty()) list += ',';
    list += item;
}

std::string capabilityText(const TavixAbout& about) {
    struct Flag {
        uint32_t bit;
        const char* name;
    };
    static const Flag kFlags[] = {
        {kCapRead, "read"},
        {kCapWrite, "write"},
        {kCapPalette, "palette"},
        {kCapTrueColour, "truecolour"},
        {kCapMultiImage, "multi"},
        {kCapPacked | kCapPackedAlt, "packed"},
        {kCapStartColour, "startcolour"},
        {kCapAttributeBits, "attributes"},
    };
    std::string text;
    for (const Flag& flag : kFlags)
        if (about.caps & flag.bit) appendListItem(text, flag.name);
    if (about.colourlimit) text += " colours<=" + std::to_string(about.colourlimit);
    if (about.namelimit) text += " name<=" + std::to_string(about.namelimit);
    return text;
}

std::string extensionText(const TavixAbout& about) {
    std::string text;
    for (int i = 0; i < kTavixMaxExtensions && about.extensions[i][0]; ++i)
        appendListItem(text, std::string(about.extensions[i], strnlen(about.extensions[i], 8)));
    return text.empty() ? "-" : text;
}

} // namespace

int runFormats(const Args&) {
    bindCodecLibrary();
    printf("%-5s %-10s %-14s %-32s %s\n", "index", "name", "extensions", "description",
           "capabilities");
    for (int driver = 0; driver < TavixCount(); ++driver) {
        TavixAbout about = driverAbout(driver);
        printf("%-5d %-10.16s %-14s %-32.32s %s\n", driver, about.shortname,
               extensionText(about).c_str(), about.description, capabilityText(about).c_str());
        if (about.notes[0]) printf("      %.128s\n", about.notes);
    }
    return 0;
}

} // namespace zytool
