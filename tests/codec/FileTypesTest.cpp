#include "codec/FileTypes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>

namespace {

TavixAbout driver(const char* description, std::initializer_list<const char*> extensions) {
    TavixAbout about{};
    strcpy(about.description, description);
    int i = 0;
    for (const char* extension : extensions)
        strcpy(about.extensions[i++], extension);
    return about;
}

CTavixFileTypesList rowsOf(std::initializer_list<TavixAbout> drivers) {
    CTavixFileTypesList rows;
    std::vector<TavixAbout> list(drivers);
    rows.BuildFrom(list);
    return rows;
}

TEST(FileTypes, OneRowPerExtensionSortedByteWise) {
    CTavixFileTypesList rows = rowsOf({driver("Targa", {".tga", ".TGA"}), driver("None", {}),
                                       driver("PNG", {".png"}), driver("Bitmap", {".bmp"})});
    ASSERT_EQ(rows.GetCount(), 4);
    const char* expected[] = {"TGA", "bmp", "png", "tga"};
    for (int i = 0; i < 4; ++i)
        EXPECT_STREQ(rows[i].extension, expected[i]);
    EXPECT_EQ(rows[0].driver, 0);
    EXPECT_EQ(rows[2].driver, 2);
    EXPECT_STREQ(rows[1].description, "Bitmap");
}

TEST(FileTypes, ExtensionsStopAtEightAndAtTheFirstGap) {
    TavixAbout nine = driver("Many", {".a", ".b", ".c", ".d", ".e", ".f", ".g", ".h"});
    strcpy(nine.author, ".i"); // a ninth would run into the next field
    TavixAbout gap = driver("Gap", {".x", "", ".z"});
    CTavixFileTypesList rows = rowsOf({nine, gap});
    EXPECT_EQ(rows.GetCount(), 9);
    EXPECT_EQ(rows.FirstExtension(1), "x");
    EXPECT_EQ(rows.FirstExtension(0), "a");
    EXPECT_EQ(rows.FirstExtension(7), "");
}

struct FilterCase {
    const char* label;
    bool openMode;
    const char* initialPath;
    int initialDriver;
    int expectedIndex;
};

class FileFilter : public ::testing::TestWithParam<FilterCase> {};

// Rows after sorting: 1 bmp (driver 2), 2 fsh (0), 3 png (1), 4 shp (0).
const CTavixFileTypesList& sampleRows() {
    static CTavixFileTypesList rows = rowsOf({driver("FSH - PC Shape File", {".fsh", ".shp"}),
                                              driver("PNG", {".png"}), driver("Bitmap", {".bmp"})});
    return rows;
}

TEST_P(FileFilter, ChoosesTheInitialEntry) {
    const FilterCase& c = GetParam();
    TavixFileFilter filter =
        TavixBuildFileFilter(sampleRows(), c.openMode, c.initialPath, c.initialDriver);
    EXPECT_EQ(filter.initialIndex, c.expectedIndex);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, FileFilter,
    ::testing::Values(FilterCase{"ExtensionWins", true, "/a/b.png", 0, 3},
                      FilterCase{"ExtensionEndsTheSearch", false, "x.fsh", 0, 2},
                      FilterCase{"LastDriverRowBeforeAMatchWins", false, "x.none", 0, 4},
                      FilterCase{"NothingMatchesOpen", true, "x.abc", -1, 5},
                      FilterCase{"NothingMatchesSave", false, "x.abc", -1, 1},
                      FilterCase{"NoExtensionUsesDriver", true, "folder/file", 2, 1},
                      FilterCase{"ExtensionIsAfterTheLastDot", true, "a.png.bmp", -1, 1}),
    [](const auto& info) { return std::string(info.param.label); });

TEST(FileFilterEntries, TextsPatternsAndAllFiles) {
    TavixFileFilter open = TavixBuildFileFilter(sampleRows(), true, "", -1);
    ASSERT_EQ(open.entries.size(), 5u);
    EXPECT_EQ(open.entries[1].text, "fsh - FSH - PC Shape File");
    EXPECT_EQ(open.entries[1].pattern, "*.fsh");
    EXPECT_EQ(open.entries[4].text, "All Files (*.*)");
    EXPECT_EQ(open.entries[4].pattern, "*.*");
    EXPECT_EQ(TavixFilterDriver(open, 5), -1);
    EXPECT_EQ(TavixFilterDriver(open, 1), 2);
    EXPECT_EQ(TavixFilterDriver(open, 0), -1);

    TavixFileFilter save = TavixBuildFileFilter(sampleRows(), false, "", -1);
    EXPECT_EQ(save.entries.size(), 4u) << "no All Files entry when saving";
}

} // namespace
