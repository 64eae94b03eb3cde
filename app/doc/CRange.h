#pragma once
// CRange: the selection set. One flag byte per image, indexed by document
// position; a non-zero byte means the image is in the set. Views, update
// hints and commands pass it around to name the images they work on.

#include <cstdint>
#include <memory>

class CRange {
  public:
    CRange() = default;
    explicit CRange(int32_t size);
    CRange(const CRange& other);
    CRange& operator=(const CRange& other);
    CRange(CRange&& other) noexcept;
    CRange& operator=(CRange&& other) noexcept;
    ~CRange() = default;

    // Resizes to n entries; entries that come into existence read 0, also
    // those that were cut off by an earlier shrink. A negative n throws
    // CInvalidArgException.
    void SetSize(int32_t n);
    int32_t GetSize() const { return m_Count; }

    // Releases the flag bytes; the size becomes 0.
    void Clear();

    // Entry access. An index below 0 or not below GetSize() throws
    // CInvalidArgException.
    uint8_t GetAt(int32_t i) const;
    void SetAt(int32_t i, uint8_t flag);
    bool IsSelected(int32_t i) const { return GetAt(i) != 0; }
    uint8_t& operator[](int32_t i);
    uint8_t operator[](int32_t i) const { return GetAt(i); }

    // Sets every entry to the same flag.
    void SetAll(uint8_t flag);

    // Number of non-zero entries.
    int32_t Count() const;

    // Same size and the same images in the set (the flag values may differ).
    bool operator==(const CRange& other) const;

  private:
    void CheckIndex(int32_t i) const;
    void Reserve(int32_t capacity);

    std::unique_ptr<uint8_t[]> m_Flags;
    int32_t m_Count = 0;
    int32_t m_Capacity = 0;
};
