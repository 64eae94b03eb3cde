#include "codec/FileTypes.h"

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

namespace {

// Extensions end at the first empty entry; at most eight count.
int extensionCount(const TavixAbout& about) {
    int n = 0;
    while (n < kTavixMaxExtensions && about.extensions[n][0] != 0)
        ++n;
    return n;
}

void appendRows(std::vector<CTavixFileType>& rows, int driver, const TavixAbout& about) {
    for (int e = 0; e < extensionCount(about); ++e) {
        CTavixFileType row{};
        row.driver = driver;
        strncpy(row.extension, about.extensions[e] + 1, sizeof row.extension - 1);
        memcpy(row.description, about.description, sizeof row.description);
        row.description[sizeof row.description - 1] = 0;
        rows.push_back(row);
    }
}

void sortRows(std::vector<CTavixFileType>& rows) {
    std::sort(rows.begin(), rows.end(), [](const CTavixFileType& a, const CTavixFileType& b) {
        return strcmp(a.extension, b.extension) < 0; // byte-wise: upper case first
    });
}

std::string extensionOf(const std::string& path) {
    size_t dot = path.rfind('.');
    return dot == std::string::npos ? std::string() : path.substr(dot + 1);
}

} // namespace

void CTavixFileTypesList::Build() {
    std::vector<TavixAbout> drivers;
    for (int driver = 0; driver < TavixCount(); ++driver) {
        TavixSet(driver);
        TavixAboutPtr about(TavixAboutDriver());
        TavixAbout copy{};
        if (about) copy = *about;
        drivers.push_back(copy);
    }
    BuildFrom(drivers);
}

void CTavixFileTypesList::BuildFrom(std::span<const TavixAbout> drivers) {
    size_t count = 0;
    for (const TavixAbout& about : drivers)
        count += static_cast<size_t>(extensionCount(about));
    m_rows.clear();
    m_rows.reserve(count);
    for (size_t driver = 0; driver < drivers.size(); ++driver)
        appendRows(m_rows, static_cast<int>(driver), drivers[driver]);
    sortRows(m_rows);
}

std::string CTavixFileTypesList::FirstExtension(int driver) const {
    for (const CTavixFileType& row : m_rows)
        if (row.driver == driver) return row.extension;
    return {};
}

int CTavixFileTypesList::DriverOfPath(const std::string& path) const {
    const size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::string extension = extensionOf(name);
    if (extension.empty()) return -1;
    for (const CTavixFileType& row : m_rows)
        if (strcasecmp(row.extension, extension.c_str()) == 0) return row.driver;
    return -1;
}

TavixFileFilter TavixBuildFileFilter(const CTavixFileTypesList& rows, bool openMode,
                                     const std::string& initialPath, int initialDriver) {
    TavixFileFilter filter;
    const std::string wanted = extensionOf(initialPath);
    int chosen = 0;
    bool extensionMatched = false;
    for (int i = 0; i < rows.GetCount(); ++i) {
        const CTavixFileType& row = rows[i];
        filter.entries.push_back({std::string(row.extension) + " - " + row.description,
                                  std::string("*.") + row.extension, row.driver});
        if (extensionMatched) continue;
        if (!wanted.empty() && wanted == row.extension) {
            chosen = i + 1;
            extensionMatched = true;
        } else if (row.driver == initialDriver) {
            chosen = i + 1;
        }
    }
    if (openMode) filter.entries.push_back({"All Files (*.*)", "*.*", -1});
    filter.initialIndex =
        chosen ? chosen : (openMode ? static_cast<int>(filter.entries.size()) : 1);
    return filter;
}

int TavixFilterDriver(const TavixFileFilter& filter, int index) {
    if (index < 1 || index > static_cast<int>(filter.entries.size())) return -1;
    return filter.entries[static_cast<size_t>(index - 1)].driver;
}
