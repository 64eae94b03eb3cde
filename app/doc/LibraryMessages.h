#pragma once
// Catches what the codec and image libraries say while an operation runs.
// The libraries answer a failure with 0 or null and explain it in one line
// through the print hook; an open or a save that fails shows that line to
// the user instead of a guess. Every line still goes on to the hook that
// was installed before (the output window, or standard error).

#include <cstdarg>
#include <string>

class CLibraryMessages {
  public:
    CLibraryMessages();
    ~CLibraryMessages();
    CLibraryMessages(const CLibraryMessages&) = delete;
    CLibraryMessages& operator=(const CLibraryMessages&) = delete;

    // The lines said since the start or the last Take, without the final
    // newline; empty when the libraries said nothing.
    std::string Take();

  private:
    static void Hook(const char* format, va_list args);

    using Previous = void (*)(const char*, va_list);
    Previous m_Previous;
    CLibraryMessages* m_Outer;
    std::string m_Text;
};
