#pragma once
// A driver that meets something it cannot read or write throws FormatError
// with a message for the user; the entry points catch it, print the message
// and return their failure result. Nothing else crosses the C boundary.

namespace tavix {

struct FormatError {
    char message[256];
};

[[noreturn]] void fail(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace tavix
