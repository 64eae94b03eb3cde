#pragma once
// The few kinds of failure the editor raises. Library code returns null or 0
// instead; the editor turns those results into these exceptions where it has
// a guard that reports them (commands, undo, open, save).
//
// All of them also derive from CException, the editor's own exception kind:
// a guard that meets a CException reports its error text to the user; any
// other exception is an unexpected program error and gets the crash line and
// the program-error dialog.

#include <stdexcept>
#include <string>

class CException {
  public:
    virtual ~CException() = default;
    // The text shown to the user for this failure.
    virtual std::string GetErrorMessage() const = 0;
};

// A file could not be read or written.
class CFileException : public std::runtime_error, public CException {
  public:
    enum Cause {
        none = 0,
        generic = 1,
        invalidFile = 6,
    };

    explicit CFileException(const std::string& what) : std::runtime_error(what), m_cause(generic) {}
    CFileException(Cause cause, const std::string& fileName)
        : std::runtime_error(Describe(cause, fileName)), m_cause(cause), m_strFileName(fileName) {}

    Cause m_cause;
    std::string m_strFileName;

    std::string GetErrorMessage() const override { return what(); }

    static std::string Describe(Cause cause, const std::string& fileName) {
        if (cause == invalidFile) return "'" + fileName + "' is not a valid file of its type.";
        return "An unexpected error occurred while accessing '" + fileName + "'.";
    }
};

// The user pressed Cancel; the operation unwinds and leaves no trace.
class CUserException : public std::runtime_error, public CException {
  public:
    CUserException() : std::runtime_error("cancelled") {}
    std::string GetErrorMessage() const override { return {}; }
};

// An allocation failed.
class CMemoryException : public std::runtime_error, public CException {
  public:
    CMemoryException() : std::runtime_error("out of memory") {}
    std::string GetErrorMessage() const override { return "Out of memory."; }
};

// An argument was outside what the callee accepts (an index past the end...).
class CInvalidArgException : public std::invalid_argument, public CException {
  public:
    explicit CInvalidArgException(const std::string& what) : std::invalid_argument(what) {}
    std::string GetErrorMessage() const override { return what(); }
};
