#include "cli/Tool.h"

#include "codec/FileTypes.h"
#include "codec/TavixBinding.h"

#include <cstring>
#include <strings.h>

namespace zytool {

std::string Args::option(const std::string& name, const std::string& fallback) const {
    auto it = options.find(name);
    return it == options.end() ? fallback : it->second;
}

std::vector<std::string> Args::all(const std::string& name) const {
    std::vector<std::string> values;
    for (const auto& [key, value] : given)
        if (key == name) values.push_back(value);
    return values;
}

namespace {

bool isFlag(const std::string& word) {
    return word == "--path-comment" || word == "--shared";
}

} // namespace

Args parseArgs(int argc, char** argv, int first) {
    Args args;
    for (int i = first; i < argc; ++i) {
        std::string word = argv[i];
        if (word.size() > 2 && word.rfind("--", 0) == 0) {
            if (isFlag(word)) { // options that take no value
                args.options[word.substr(2)] = "1";
                continue;
            }
            if (i + 1 >= argc) throw ToolError("option " + word + " needs a value");
            args.options[word.substr(2)] = argv[i + 1];
            args.given.emplace_back(word.substr(2), argv[i + 1]);
            ++i;
        } else {
            args.positional.push_back(word);
        }
    }
    return args;
}

void bindCodecLibrary() {
    if (TavixIsBound()) return;
    if (!TavixBind())
        throw ToolError("cannot load the codec library '" + TavixLibraryName() +
                        "' (set TAVIX_DRIVERNAME to its path)");
}

TavixAbout driverAbout(int driver) {
    TavixSet(driver);
    TavixAboutPtr about(TavixAboutDriver());
    if (!about)
        throw ToolError("the codec library gives no description of driver " +
                        std::to_string(driver));
    return *about;
}

std::string driverName(int driver) {
    return driverAbout(driver).shortname;
}

int outputDriver(const std::string& path, const std::string& format) {
    if (!format.empty()) {
        int driver = TavixFind(format.c_str());
        if (driver < 0 || driver >= TavixCount())
            throw ToolError("no driver is named '" + format + "' (see 'zytool formats')");
        return driver;
    }
    size_t dot = path.rfind('.');
    size_t slash = path.rfind('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        throw ToolError("'" + path + "' has no extension: name a driver with --format");
    std::string extension = path.substr(dot + 1);
    CTavixFileTypesList rows;
    rows.Build();
    for (int i = 0; i < rows.GetCount(); ++i)
        if (strcasecmp(rows[i].extension, extension.c_str()) == 0) return rows[i].driver;
    throw ToolError("no driver writes ." + extension + " files: name one with --format");
}

TavixReadResult readFileOrThrow(const std::string& path, bool partial, bool pixels) {
    TavixReadResult result = pixels ? TavixReadFile(path) : TavixReadInformation(path);
    if (result.ok) return result;
    // A listing of a file none of whose frames read would only be a header.
    if (!partial || result.driver < 0 || result.frames.empty())
        throw ToolError(path + ": " + result.error);
    fprintf(stderr, "zytool: %s: %s\n", path.c_str(), result.error.c_str());
    return result;
}

std::string baseName(const std::string& path) {
    size_t slash = path.rfind('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

} // namespace zytool
