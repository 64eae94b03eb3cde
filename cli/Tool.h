#pragma once
// Shared pieces of zytool's verbs: argument parsing, binding the codec
// library, choosing a driver, and the error that ends a verb.

#include "codec/FrameIO.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace zytool {

// Ends the verb: main prints "zytool: <what>" on stderr and exits non-zero.
struct ToolError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Args {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;             // "--format png" -> {"format", "png"}
    std::vector<std::pair<std::string, std::string>> given; // every option in order, repeats kept

    bool has(const std::string& name) const { return options.count(name) != 0; }
    std::string option(const std::string& name, const std::string& fallback = {}) const;
    // Every value of an option that may be repeated (--set A --set B).
    std::vector<std::string> all(const std::string& name) const;
};

// Every option takes a value except the flag --shared.
Args parseArgs(int argc, char** argv, int first);

void bindCodecLibrary();

// The driver named by --format, or else the one whose extension ends `path`.
int outputDriver(const std::string& path, const std::string& format);
std::string driverName(int driver);
TavixAbout driverAbout(int driver);

// Throws unless every frame read; with `partial` the frames that did read
// are returned and the failures printed; without `pixels` only the frames'
// records are read (see TavixReadInformation).
TavixReadResult readFileOrThrow(const std::string& path, bool partial = false, bool pixels = true);

// The file name without folder and extension.
std::string baseName(const std::string& path);

} // namespace zytool
