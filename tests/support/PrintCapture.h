#pragma once
// Records every line printed through the image library's print hook while
// it lives, so tests can assert the exact messages.

#include "imaging/galloc.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

class PrintCapture {
  public:
    PrintCapture() {
        lines().clear();
        m_Previous = gsetprinthook(&hook);
    }
    ~PrintCapture() { gsetprinthook(m_Previous); }
    PrintCapture(const PrintCapture&) = delete;
    PrintCapture& operator=(const PrintCapture&) = delete;

    static std::vector<std::string>& lines() {
        static std::vector<std::string> captured;
        return captured;
    }

  private:
    static void hook(const char* format, va_list args) {
        char buffer[8192];
        vsnprintf(buffer, sizeof buffer, format, args);
        lines().emplace_back(buffer);
    }
    GPrintHook m_Previous;
};
