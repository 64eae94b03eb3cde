#pragma once
// How Zy finds the shared libraries it loads at run time (the codec
// library, the layout plug-in): a bare name N is libN.so beside the running
// program first, then wherever the system loader finds it
// (LD_LIBRARY_PATH, the system folders); a name with a '/' is a path.

#include <string>

// The folder of the running program, with a trailing '/' (empty when it
// cannot be told).
std::string ExecutableFolder();

// dlopen of the library `name` names, with `flags`; null when none loads
// (dlerror() says why).
void* LoadNamedLibrary(const std::string& name, int flags);
