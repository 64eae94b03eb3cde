#include "app/doc/LibraryMessages.h"

#include "imaging/galloc.h"

#include <cstdio>

namespace {

// The innermost capture; captures nest like the calls that make them.
CLibraryMessages* g_current = nullptr;

} // namespace

CLibraryMessages::CLibraryMessages() : m_Outer(g_current) {
    g_current = this;
    m_Previous = gsetprinthook(&CLibraryMessages::Hook);
}

CLibraryMessages::~CLibraryMessages() {
    gsetprinthook(m_Previous);
    g_current = m_Outer;
}

std::string CLibraryMessages::Take() {
    std::string text = std::move(m_Text);
    m_Text.clear();
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text;
}

void CLibraryMessages::Hook(const char* format, va_list args) {
    CLibraryMessages* self = g_current;
    va_list copy;
    va_copy(copy, args);
    char line[2048];
    vsnprintf(line, sizeof line, format, copy);
    va_end(copy);
    if (!self) return;
    self->m_Text += line;
    if (self->m_Previous) self->m_Previous(format, args);
}
