#pragma once
// Bounds on the records the program and the codec library exchange.

#include <cstdint>

// The largest record, tail included, that travels: room for the stored
// blocks of any texture a driver writes (a 4096 x 4096 DXT5 frame keeps
// 16 MiB), yet a bound on a corrupt size field.
constexpr int32_t kTavixMaxInfoSize = 1 << 30;
