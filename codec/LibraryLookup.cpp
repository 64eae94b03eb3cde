#include "codec/LibraryLookup.h"

#include <dlfcn.h>
#include <unistd.h>

std::string ExecutableFolder() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0) return {};
    std::string path(buffer, static_cast<size_t>(n));
    return path.substr(0, path.rfind('/') + 1);
}

void* LoadNamedLibrary(const std::string& name, int flags) {
    if (name.find('/') != std::string::npos) return dlopen(name.c_str(), flags);
    std::string file = "lib" + name + ".so";
    std::string beside = ExecutableFolder() + file;
    if (access(beside.c_str(), F_OK) == 0)
        if (void* handle = dlopen(beside.c_str(), flags)) return handle;
    return dlopen(file.c_str(), flags);
}
