#include "app/doc/Profile.h"

#include <cerrno>
#include <cstdlib>

int CMemoryProfile::GetInt(const std::string& section, const std::string& entry,
                           int fallback) const {
    auto it = m_Values.find({section, entry});
    if (it == m_Values.end()) return fallback;
    const char* text = it->second.c_str();
    char* end = nullptr;
    errno = 0;
    long long value = strtoll(text, &end, 0);
    if (errno || end == text || *end) return fallback;
    // Colours are stored as unsigned 0xFFRRGGBB words; they come back as the
    // same 32 bits.
    return static_cast<int>(static_cast<unsigned int>(value));
}

void CMemoryProfile::WriteInt(const std::string& section, const std::string& entry, int value) {
    m_Values[{section, entry}] = std::to_string(value);
}

std::string CMemoryProfile::GetString(const std::string& section, const std::string& entry,
                                      const std::string& fallback) const {
    auto it = m_Values.find({section, entry});
    return it == m_Values.end() ? fallback : it->second;
}

void CMemoryProfile::WriteString(const std::string& section, const std::string& entry,
                                 const std::string& value) {
    m_Values[{section, entry}] = value;
}

bool CMemoryProfile::Contains(const std::string& section, const std::string& entry) const {
    return m_Values.count({section, entry}) != 0;
}
