#pragma once
// The few kinds of failure the editor raises. Library code returns null or 0
// instead; the editor turns those results into these exceptions where it has
// a guard that reports them (commands, undo, open, save).

#include <stdexcept>
#include <string>

// A file could not be read or written.
class CFileException : public std::runtime_error {
  public:
    explicit CFileException(const std::string& what) : std::runtime_error(what) {}
};

// The user pressed Cancel; the operation unwinds and leaves no trace.
class CUserException : public std::runtime_error {
  public:
    CUserException() : std::runtime_error("cancelled") {}
};

// An allocation failed.
class CMemoryException : public std::runtime_error {
  public:
    CMemoryException() : std::runtime_error("out of memory") {}
};

// An argument was outside what the callee accepts (an index past the end...).
class CInvalidArgException : public std::invalid_argument {
  public:
    explicit CInvalidArgException(const std::string& what) : std::invalid_argument(what) {}
};
