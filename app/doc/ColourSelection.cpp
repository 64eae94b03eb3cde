#include "app/doc/ColourSelection.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

bool CColourSelection::IsSelected(int index) const {
    return index >= 0 && index < kSize && m_Flags[static_cast<size_t>(index)];
}

void CColourSelection::Select(int index, bool selected) {
    if (index < 0 || index >= kSize || IsSelected(index) == selected) return;
    m_Flags[static_cast<size_t>(index)] = selected ? 1 : 0;
    m_Count += selected ? 1 : -1;
    Changed();
}

void CColourSelection::Toggle(int index) {
    Select(index, !IsSelected(index));
}

void CColourSelection::SelectRange(int first, int last, bool selected) {
    if (first > last) std::swap(first, last);
    first = std::max(first, 0);
    last = std::min(last, kSize - 1);
    for (int i = first; i <= last; ++i)
        m_Flags[static_cast<size_t>(i)] = selected ? 1 : 0;
    m_Count = static_cast<int>(
        std::count_if(m_Flags.begin(), m_Flags.end(), [](uint8_t flag) { return flag != 0; }));
    Changed();
}

void CColourSelection::Clear() {
    m_Flags.fill(0);
    m_Count = 0;
    Changed();
}

void CColourSelection::SetFlags(const std::array<uint8_t, kSize>& flags) {
    for (int i = 0; i < kSize; ++i)
        m_Flags[static_cast<size_t>(i)] = flags[static_cast<size_t>(i)] ? 1 : 0;
    m_Count = static_cast<int>(std::count(m_Flags.begin(), m_Flags.end(), 1));
    Changed();
}

std::vector<int> CColourSelection::GetIndices() const {
    std::vector<int> indices;
    for (int i = 0; i < kSize; ++i)
        if (m_Flags[static_cast<size_t>(i)]) indices.push_back(i);
    return indices;
}

std::string CColourSelection::ToText() const {
    std::string text;
    for (int i = 0; i < kSize; ++i) {
        if (!m_Flags[static_cast<size_t>(i)]) continue;
        int last = i;
        while (last + 1 < kSize && m_Flags[static_cast<size_t>(last + 1)])
            ++last;
        if (!text.empty()) text += ',';
        text += std::to_string(i);
        if (last > i) text += '-' + std::to_string(last);
        i = last;
    }
    return text;
}

bool CColourSelection::FromText(const std::string& text) {
    std::array<uint8_t, kSize> flags{};
    std::string error;
    if (!ParseColourList(text, flags, error)) return false;
    SetFlags(flags);
    return true;
}

int CColourSelection::AddListener(std::function<void()> listener) {
    m_Listeners.emplace_back(m_NextListener, std::move(listener));
    return m_NextListener++;
}

void CColourSelection::RemoveListener(int id) {
    std::erase_if(m_Listeners, [id](const auto& entry) { return entry.first == id; });
}

void CColourSelection::Changed() {
    // A listener may remove itself while it runs: walk a copy.
    const auto listeners = m_Listeners;
    for (const auto& entry : listeners)
        entry.second();
}

CColourSelection& ZyColourSelection() {
    static CColourSelection selection;
    return selection;
}

namespace {

// A number 0..255 at `at`; advances past it.
bool readIndex(const std::string& text, size_t& at, int& value, std::string& error) {
    size_t start = at;
    while (at < text.size() && isdigit(static_cast<unsigned char>(text[at])))
        ++at;
    if (at == start) {
        error = "'" + text.substr(start, 12) + "' is not a palette index";
        return false;
    }
    const long number =
        strtol(text.substr(start, std::min<size_t>(at - start, 6)).c_str(), nullptr, 10);
    if (at - start > 3 || number > 255) {
        error = "palette index " + text.substr(start, at - start) + " is above 255";
        return false;
    }
    value = static_cast<int>(number);
    return true;
}

void skipBlanks(const std::string& text, size_t& at) {
    while (at < text.size() && isspace(static_cast<unsigned char>(text[at])))
        ++at;
}

} // namespace

bool ParseColourList(const std::string& text, std::array<uint8_t, 256>& flags, std::string& error) {
    std::array<uint8_t, 256> named{};
    size_t at = 0;
    skipBlanks(text, at);
    while (at < text.size()) {
        int first = 0;
        if (!readIndex(text, at, first, error)) return false;
        int last = first;
        skipBlanks(text, at);
        if (at < text.size() && text[at] == '-') {
            ++at;
            skipBlanks(text, at);
            if (!readIndex(text, at, last, error)) return false;
            skipBlanks(text, at);
        }
        for (int i = std::min(first, last); i <= std::max(first, last); ++i)
            named[static_cast<size_t>(i)] = 1;
        if (at < text.size() && text[at] == ',') {
            ++at;
            skipBlanks(text, at);
            if (at == text.size()) {
                error = "the colour list ends with a comma";
                return false;
            }
        }
    }
    for (size_t i = 0; i < named.size(); ++i)
        if (named[i]) flags[i] = 1;
    return true;
}
