// Failure paths: allocation failures forced with GALLOCMAX and unusable
// input. Each must give null or 0, print through the hook rather than
// crash, and leave no block behind.

#include "test_image.h"

#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>

namespace {

constexpr int32_t kFNil = 0, kFlip = 25, kXcolour = 57;

class AllocationLimit : public ModuleTest {
  protected:
    // Lets `extra` more blocks be live than are live now.
    void allowMore(int32_t extra) {
        setenv("GALLOCMAX", std::to_string(galloc_live_count() + extra).c_str(), 1);
        galloc_reload_limit();
    }
    void TearDown() override {
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        ModuleTest::TearDown();
    }
    PrintCapture m_Capture; // keeps the expected failure messages out of the log
};

TEST_F(AllocationLimit, OpenAndQueryFailCleanly) {
    TestImage image(4, 4, 32);
    ImageEntry entry = image.entry();
    for (int32_t index : {kFNil, kFlip, kXcolour}) {
        SCOPED_TRACE(index);
        module_select(index);
        allowMore(0);
        EXPECT_EQ(module_describe(), nullptr);
        ModuleInstance* instance = reinterpret_cast<ModuleInstance*>(&entry);
        EXPECT_EQ(module_open(&instance, 1, &entry, 0, nullptr), 0);
        EXPECT_EQ(instance, nullptr);

        allowMore(1);
        ASSERT_EQ(module_open(&instance, 1, &entry, 0, nullptr), 1);
        EXPECT_EQ(module_query(instance, 0), nullptr);
        EXPECT_EQ(module_close(instance), 1);
    }
}

TEST_F(AllocationLimit, FindWithoutMemorySelectsFNil) {
    module_select(kFlip);
    allowMore(0);
    EXPECT_EQ(module_find("Xcolour"), 0);
    EXPECT_EQ(module_current(), 0);
}

TEST_F(AllocationLimit, FlipBothFailsWhenItsScratchImageCannotBeHad) {
    TestImage image(5, 3, 8);
    ImageEntry entry = image.entry();
    const ModuleValue both = ModuleValue::ofInt(3);
    module_select(kFlip);
    ModuleInstance* instance = nullptr;
    ASSERT_EQ(module_open(&instance, 1, &entry, 1, &both), 1);
    std::vector<uint8_t> out(image.pixels.size(), 0x5A);
    allowMore(0);
    EXPECT_EQ(module_process(instance, image.info(), out.data(), image.rowbytes), 0);
    EXPECT_EQ(module_close(instance), 1);
}

TEST_F(AllocationLimit, RunNewFailsAtEveryStepWithoutLeaks) {
    TestImage image(5, 3, 32);
    ImageEntry entry = image.entry();
    const ModuleValue both = ModuleValue::ofInt(3);
    struct Case {
        int32_t module;
        int32_t blocksNeeded; // instance, record, pixels (+ scratch for Flip Both)
    };
    for (const Case& c : {Case{kFNil, 3}, Case{kXcolour, 3}, Case{kFlip, 4}}) {
        for (int32_t extra = 0; extra <= c.blocksNeeded; ++extra) {
            SCOPED_TRACE(std::to_string(c.module) + " with " + std::to_string(extra));
            allowMore(extra);
            ModuleResult result{};
            int ok = module_run_new(c.module, 1, &entry, 1, &both, 4, &result);
            EXPECT_EQ(ok, extra == c.blocksNeeded ? 1 : 0);
            EXPECT_EQ(result.info != nullptr, ok == 1);
            module_result_free(&result);
            unsetenv("GALLOCMAX");
            galloc_reload_limit();
        }
    }
}

TEST_F(AllocationLimit, RunInPlaceLeavesTheImageWhenOpenFails) {
    TestImage image(4, 2, 32);
    TestImage before = image;
    const ModuleValue vertical = ModuleValue::ofInt(2);
    allowMore(0);
    EXPECT_EQ(
        module_run_in_place(kFlip, image.info(), image.pixels.data(), image.rowbytes, 1, &vertical),
        0);
    EXPECT_EQ(image.pixels, before.pixels);
}

TEST_F(ModuleTest, OpenRefusesUnusableImages) {
    TestImage good(3, 3, 32);
    TestImage shortRecord(3, 3, 32);
    shortRecord.info()->size = 100;
    TestImage noWidth(3, 3, 32);
    noWidth.info()->width = 0;
    TestImage huge(3, 3, 32);
    huge.info()->width = 0x40000000;
    ImageEntry nullInfo{nullptr, good.pixels.data(), good.rowbytes};

    struct Case {
        const char* what;
        int32_t count;
        const ImageEntry* entries;
    };
    ImageEntry entries[] = {good.entry(), shortRecord.entry(), noWidth.entry(), huge.entry(),
                            nullInfo};
    const Case cases[] = {
        {"no entries", 1, nullptr},          {"zero images", 0, &entries[0]},
        {"short record", 1, &entries[1]},    {"zero width", 1, &entries[2]},
        {"oversized row", 1, &entries[3]},   {"null record", 1, &entries[4]},
        {"negative count", -1, &entries[0]},
    };
    for (int32_t module : {kFNil, kFlip, kXcolour})
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.what) + " for module " + std::to_string(module));
            PrintCapture capture;
            module_select(module);
            ModuleInstance* instance = nullptr;
            EXPECT_EQ(module_open(&instance, c.count, c.entries, 0, nullptr), 0);
            EXPECT_EQ(instance, nullptr);
            EXPECT_EQ(PrintCapture::lines().size(), 1u);
        }
}

TEST_F(ModuleTest, ProcessRefusesAResultThatDoesNotFit) {
    TestImage source(4, 3, 32);
    ImageEntry entry = source.entry();
    TestImage wider(5, 3, 32);
    TestImage indexed(4, 3, 8);
    TestImage same(4, 3, 32);
    struct Case {
        const char* what;
        TestImage* result;
        int32_t rowbytes;
        bool nullPixels;
    };
    const Case cases[] = {
        {"wider", &wider, wider.rowbytes, false},
        {"other depth", &indexed, 16, false},
        {"short rows", &same, 15, false},
        {"no pixels", &same, 16, true},
    };
    for (int32_t module : {kFNil, kFlip, kXcolour})
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.what) + " for module " + std::to_string(module));
            module_select(module);
            ModuleInstance* instance = nullptr;
            ASSERT_EQ(module_open(&instance, 1, &entry, 0, nullptr), 1);
            std::vector<uint8_t> out(4096, 0x5A);
            PrintCapture capture;
            EXPECT_EQ(module_process(instance, c.result->info(),
                                     c.nullPixels ? nullptr : out.data(), c.rowbytes),
                      0);
            EXPECT_EQ(PrintCapture::lines().size(), 1u);
            for (uint8_t b : out)
                ASSERT_EQ(b, 0x5A);
            EXPECT_EQ(module_close(instance), 1);
        }
}

// Records from files may hold any point and count; mirroring must neither
// overflow nor read past the hot-spot table.
TEST_F(ModuleTest, FlipToleratesExtremePointsAndCounts) {
    TestImage source(10, 6, 32);
    TavixInfo* in = source.info();
    in->centerx = INT32_MIN;
    in->centery = INT32_MAX;
    in->numhotspots = 5000;
    in->hotspots[1023] = {4, 1};
    const ModuleValue values[] = {ModuleValue::ofInt(3), ModuleValue::ofInt(INT32_MIN),
                                  ModuleValue::ofInt(INT32_MAX), ModuleValue::ofInt(1)};
    ImageEntry entry = source.entry();
    ModuleResult result{};
    ASSERT_EQ(module_run_new(kFlip, 1, &entry, 4, values, 1, &result), 1);
    EXPECT_EQ(result.info->centerx, INT32_MIN + 10);
    EXPECT_EQ(result.info->hotspots[1023].x, 6);
    EXPECT_EQ(result.info->hotspots[1023].y, 5);
    module_result_free(&result);
}

} // namespace
