#pragma once
// Low-level file helpers of the library, also installed as the codec
// library's stream callbacks. A handle is a file descriptor; 0 always means
// failure. '\\' in a path is taken as a folder separator, like '/'.

#include <cstdint>

intptr_t gfopenread(const char* path);
// Creates every folder along the path first, then creates or truncates the file.
intptr_t gfopenwrite(const char* path);
int gfclose(intptr_t handle);
int32_t gfread(intptr_t handle, void* buffer, int32_t count);
int32_t gfwrite(intptr_t handle, const void* buffer, int32_t count);
// Seeks from the start to the 64-bit offset (low word, high word); 1 on success.
int gfseek(intptr_t handle, uint32_t low, int32_t high);
int64_t gftell(intptr_t handle);
int64_t gfsize(intptr_t handle);
