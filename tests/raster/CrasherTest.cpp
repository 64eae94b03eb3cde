// Broken and hostile files: each one in crashers/ must fail to read with a
// message and give back every block it took, through the library and
// through the fuzz targets' body; the fuzzers' past findings must stay
// fixed; truncations of good files and failed allocations at every point
// must be just as clean.

#include "RasterFuzz.h"
#include "RasterTestSupport.h"

#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace rastertest;

namespace {

const char* const kDrivers[] = {"tga", "png", "bmp"};

std::vector<std::filesystem::path> crasherFiles() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(ZY_RASTER_CRASHERS))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// Good files of every driver and pixel kind, as the library writes them.
std::vector<std::filesystem::path> goodFiles(const TempFolder& folder) {
    std::vector<uint32_t> palette = {0xFF102030, 0x80405060, 0x00708090, 0xFFFFFFFF};
    std::vector<uint8_t> indices;
    std::vector<uint32_t> colours;
    for (int i = 0; i < 40 * 3; ++i) {
        indices.push_back(static_cast<uint8_t>(i / 5 % 4));
        colours.push_back(i % 7 ? 0x80FF8040 : 0xFF000000u + static_cast<uint32_t>(i));
    }
    std::vector<std::filesystem::path> files;
    for (const char* driver : kDrivers)
        for (int kind = 0; kind < 3; ++kind) {
            TavixFrame frame = kind == 0 ? indexedFrame(40, 3, palette, indices, 8)
                                         : trueColourFrame(40, 3, colours, 8);
            frame.info->packed = kind == 2;
            std::filesystem::path path = folder / ("good" + std::to_string(kind) + "." + driver);
            EXPECT_TRUE(writeImage(path, driver, frame));
            files.push_back(path);
        }
    return files;
}

TEST(RasterCrashers, FailCleanlyThroughTheLibrary) {
    TempFolder folder;
    std::vector<std::filesystem::path> files = crasherFiles();
    ASSERT_GE(files.size(), 40u);
    zytest::bindBuiltLibrary();
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        // A copy, so the name (which Targa detection needs) is the file's own.
        std::filesystem::path copy = folder / file.filename();
        std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
        int32_t live = galloc_live_count();
        MessageCapture messages;
        Image image = readImage(copy);
        EXPECT_FALSE(image.ok);
        EXPECT_NE(messages.text().find("tavix: "), std::string::npos) << "no message for the user";
        EXPECT_EQ(galloc_live_count(), live);
    }
}

TEST(RasterCrashers, ReplayThroughTheFuzzTargets) {
    // The fuzz body aborts on a leak, an inconsistent frame or a round trip
    // that changes pixels; here every crasher goes to every driver.
    int32_t live = galloc_live_count();
    for (const std::filesystem::path& file : crasherFiles()) {
        std::vector<uint8_t> bytes = readBytes(file);
        for (const char* driver : kDrivers)
            fuzzRaster(driver, bytes.data(), bytes.size());
    }
    EXPECT_EQ(galloc_live_count(), live);
}

// Inputs the fuzzers once tripped over, named "<driver>-<what went wrong>";
// some of them are readable files, so only the fuzz body replays them.
TEST(RasterCrashers, FuzzFindingsStayFixed) {
    int32_t live = galloc_live_count();
    int replayed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZY_RASTER_FINDINGS)) {
        std::string name = entry.path().filename().string();
        std::vector<uint8_t> bytes = readBytes(entry.path());
        fuzzRaster(name.substr(0, 3).c_str(), bytes.data(), bytes.size());
        ++replayed;
    }
    EXPECT_GT(replayed, 0);
    EXPECT_EQ(galloc_live_count(), live);
}

TEST(RasterCrashers, EveryTruncationOfAGoodFileIsClean) {
    TempFolder folder;
    int32_t live = galloc_live_count();
    for (const std::filesystem::path& path : goodFiles(folder)) {
        SCOPED_TRACE(path.filename().string());
        std::vector<uint8_t> bytes = readBytes(path);
        std::string driver = path.extension().string().substr(1);
        for (size_t length = 0; length <= bytes.size(); length += length < 80 ? 1 : 13)
            fuzzRaster(driver.c_str(), bytes.data(), length);
        fuzzRaster(driver.c_str(), bytes.data(), bytes.size());
    }
    EXPECT_EQ(galloc_live_count(), live);
}

TEST(RasterCrashers, AllocationFailuresAreCleanFailures) {
    TempFolder folder;
    std::vector<std::filesystem::path> files = goodFiles(folder);
    int32_t live = galloc_live_count();
    for (const std::filesystem::path& path : files) {
        SCOPED_TRACE(path.filename().string());
        Image whole = readImage(path);
        ASSERT_TRUE(whole.ok) << whole.error;
        for (int limit = live; limit < live + 40; ++limit) {
            setenv("GALLOCMAX", std::to_string(limit).c_str(), 1);
            galloc_reload_limit();
            Image image;
            {
                MessageCapture quiet;
                image = readImage(path);
            }
            unsetenv("GALLOCMAX");
            galloc_reload_limit();
            if (image.ok) {
                EXPECT_EQ(image.argb, whole.argb) << "limit " << limit;
            }
            EXPECT_EQ(galloc_live_count(), live) << "limit " << limit;
        }
    }
}

TEST(RasterCrashers, WritingUnderAllocationFailuresIsClean) {
    TempFolder folder;
    TavixFrame frame = trueColourFrame(30, 2, std::vector<uint32_t>(60, 0x80123456), 8);
    int32_t live = galloc_live_count();
    for (const char* driver : kDrivers)
        for (int limit = live; limit < live + 30; ++limit) {
            SCOPED_TRACE(std::string(driver) + " limit " + std::to_string(limit));
            std::filesystem::path path = folder / (std::string("w.") + driver);
            setenv("GALLOCMAX", std::to_string(limit).c_str(), 1);
            galloc_reload_limit();
            bool ok;
            {
                MessageCapture quiet;
                ok = writeImage(path, driver, frame);
            }
            unsetenv("GALLOCMAX");
            galloc_reload_limit();
            if (ok) {
                EXPECT_EQ(readImage(path).argb, zytest::argbPixels(frame));
            }
            EXPECT_EQ(galloc_live_count(), live);
        }
}

} // namespace
