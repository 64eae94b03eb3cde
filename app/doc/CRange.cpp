#include "app/doc/CRange.h"

#include "app/doc/Exceptions.h"

#include <algorithm>
#include <cstring>
#include <string>

CRange::CRange(int32_t size) {
    SetSize(size);
}

CRange::CRange(const CRange& other) {
    *this = other;
}

CRange& CRange::operator=(const CRange& other) {
    if (this == &other) return *this;
    if (other.m_Count > m_Capacity) {
        // Allocate before touching our own state so a failure leaves us intact.
        auto flags = std::make_unique<uint8_t[]>(static_cast<size_t>(other.m_Count));
        m_Flags = std::move(flags);
        m_Capacity = other.m_Count;
    }
    if (other.m_Count > 0) memcpy(m_Flags.get(), other.m_Flags.get(), other.m_Count);
    m_Count = other.m_Count;
    return *this;
}

CRange::CRange(CRange&& other) noexcept
    : m_Flags(std::move(other.m_Flags)), m_Count(other.m_Count), m_Capacity(other.m_Capacity) {
    other.m_Count = 0;
    other.m_Capacity = 0;
}

CRange& CRange::operator=(CRange&& other) noexcept {
    if (this == &other) return *this;
    m_Flags = std::move(other.m_Flags);
    m_Count = other.m_Count;
    m_Capacity = other.m_Capacity;
    other.m_Count = 0;
    other.m_Capacity = 0;
    return *this;
}

void CRange::Reserve(int32_t capacity) {
    if (capacity <= m_Capacity) return;
    // Grow geometrically so that adding images one by one stays linear.
    int64_t grown = std::max<int64_t>(capacity, int64_t{m_Capacity} * 2);
    grown = std::min<int64_t>(grown, INT32_MAX);
    auto flags = std::make_unique<uint8_t[]>(static_cast<size_t>(grown));
    if (m_Count > 0) memcpy(flags.get(), m_Flags.get(), m_Count);
    m_Flags = std::move(flags);
    m_Capacity = static_cast<int32_t>(grown);
}

void CRange::SetSize(int32_t n) {
    if (n < 0) throw CInvalidArgException("CRange::SetSize: negative size " + std::to_string(n));
    Reserve(n);
    if (n > m_Count) memset(m_Flags.get() + m_Count, 0, static_cast<size_t>(n - m_Count));
    m_Count = n;
}

void CRange::Clear() {
    m_Flags.reset();
    m_Count = 0;
    m_Capacity = 0;
}

void CRange::CheckIndex(int32_t i) const {
    if (i < 0 || i >= m_Count)
        throw CInvalidArgException("CRange: index " + std::to_string(i) + " outside 0.." +
                                   std::to_string(m_Count - 1));
}

uint8_t CRange::GetAt(int32_t i) const {
    CheckIndex(i);
    return m_Flags[i];
}

void CRange::SetAt(int32_t i, uint8_t flag) {
    CheckIndex(i);
    m_Flags[i] = flag;
}

uint8_t& CRange::operator[](int32_t i) {
    CheckIndex(i);
    return m_Flags[i];
}

void CRange::SetAll(uint8_t flag) {
    if (m_Count > 0) memset(m_Flags.get(), flag, static_cast<size_t>(m_Count));
}

int32_t CRange::Count() const {
    int32_t count = 0;
    for (int32_t i = 0; i < m_Count; ++i)
        if (m_Flags[i] != 0) ++count;
    return count;
}

bool CRange::operator==(const CRange& other) const {
    if (m_Count != other.m_Count) return false;
    for (int32_t i = 0; i < m_Count; ++i)
        if ((m_Flags[i] != 0) != (other.m_Flags[i] != 0)) return false;
    return true;
}
