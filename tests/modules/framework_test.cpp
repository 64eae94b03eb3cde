// The table operations (count, select, find), the call wrappers, the ways
// of running a module, and the text encoding of parameter values.

#include "test_image.h"

#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

constexpr int32_t kFNil = 0, kBlend = 5, kFlip = 25, kXcolour = 57;

TEST_F(ModuleTest, FindFoldsAsciiCaseAndFallsBackToFNil) {
    struct Case {
        const char* name;
        int32_t index;
    };
    const Case cases[] = {
        {"blend", kBlend}, {"BLEND", kBlend},     {"Blend", kBlend}, {"bLeNd", kBlend},
        {"Flip", kFlip},   {"xcolour", kXcolour}, {"FNil", kFNil},   {"fnil", kFNil},
        {"FYI", 1},        {"Photoshop", 69},     {"PHOTOSHOP", 69}, {"mipmap", 68},
        {"", kFNil},       {"nosuch", kFNil},     {"Blen", kFNil},   {"Blend ", kFNil},
        {"BlendX", kFNil}, {"Bl\xC9nd", kFNil},   {"Rot", 43},       {"rotate", 44},
        {"PSort", 39},     {"palsort", 36},       {"GREY", 28},      {"Equalize", 21},
    };
    for (const Case& c : cases) {
        module_select(kXcolour); // a miss must move the selection to FNil
        EXPECT_EQ(module_find(c.name), c.index) << '"' << c.name << '"';
        EXPECT_EQ(module_current(), c.index) << '"' << c.name << '"';
    }
    module_select(kFlip);
    EXPECT_EQ(module_find(nullptr), kFNil);
    EXPECT_EQ(module_current(), kFNil);
}

TEST_F(ModuleTest, SelectOutOfRangeSelectsFNil) {
    struct Case {
        int32_t asked, selected;
    };
    const Case cases[] = {{-1, 0},        {70, 0}, {71, 0}, {INT32_MIN, 0},
                          {INT32_MAX, 0}, {0, 0},  {5, 5},  {69, 69}};
    for (const Case& c : cases) {
        module_select(kBlend);
        EXPECT_EQ(module_select(c.asked), c.selected) << c.asked;
        EXPECT_EQ(module_current(), c.selected) << c.asked;
    }
}

TEST_F(ModuleTest, WrappersToleratesNullInstances) {
    for (int32_t index : {kFNil, kFlip, kXcolour, kBlend}) {
        module_select(index);
        PrintCapture capture;
        TestImage image(2, 2, 32);
        EXPECT_EQ(module_query(nullptr, 0), nullptr);
        EXPECT_EQ(module_process(nullptr, image.info(), image.pixels.data(), image.rowbytes), 0);
        EXPECT_EQ(module_close(nullptr), 0);
        EXPECT_EQ(module_open(nullptr, 1, nullptr, 0, nullptr), 0);
    }
}

// Every module either opens on a plain image or refuses with exactly one
// line saying why; none leaves a stale instance.
TEST_F(ModuleTest, EveryModuleOpensOrRefusesWithOneLine) {
    TestImage image(3, 3, 32);
    ImageEntry entries[2] = {image.entry(), image.entry()};
    for (int32_t i = 0; i < module_count(); ++i) {
        module_select(i);
        ModuleDescriptor* d = module_describe();
        ASSERT_TRUE(d);
        std::string name = d->name;
        gfree(d);
        PrintCapture capture;
        ModuleInstance* instance = reinterpret_cast<ModuleInstance*>(&image); // must be overwritten
        if (module_open(&instance, 2, entries, 0, nullptr)) {
            ASSERT_NE(instance, nullptr) << name;
            EXPECT_NE(instance, reinterpret_cast<ModuleInstance*>(&image)) << name;
            EXPECT_EQ(module_close(instance), 1) << name;
            continue;
        }
        EXPECT_EQ(instance, nullptr) << name;
        ASSERT_EQ(PrintCapture::lines().size(), 1u) << name;
        EXPECT_EQ(module_query(nullptr, 0), nullptr) << name;
        EXPECT_EQ(module_close(nullptr), 0) << name;
    }
}

TEST_F(ModuleTest, FNilInPlaceLeavesImageUnchanged) {
    for (int32_t bpp : {8, 32}) {
        TestImage image(5, 3, bpp, 3);
        TestImage before = image;
        EXPECT_EQ(module_run_in_place(kFNil, image.info(), image.pixels.data(), image.rowbytes, 0,
                                      nullptr),
                  1);
        EXPECT_EQ(image.pixels, before.pixels) << bpp;
        EXPECT_EQ(image.record, before.record) << bpp;
        EXPECT_EQ(module_current(), kFNil);
    }
}

TEST_F(ModuleTest, FNilIntoNewBufferCopiesRowsAndLeavesPadding) {
    for (int32_t bpp : {8, 32}) {
        TestImage source(5, 3, bpp, 2, 40); // record with a driver's tail
        ImageEntry entry = source.entry();
        module_select(kFNil);
        ModuleInstance* instance = nullptr;
        ASSERT_EQ(module_open(&instance, 1, &entry, 0, nullptr), 1);
        TavixInfo* info = module_query(instance, 0);
        ASSERT_TRUE(info);
        EXPECT_EQ(memcmp(info, source.record.data(), source.record.size()), 0)
            << "the whole record, tail included, is copied";

        int32_t pitch = source.width() * source.pixelBytes() + 7;
        std::vector<uint8_t> out(static_cast<size_t>(pitch) * source.height(), 0x5A);
        EXPECT_EQ(module_process(instance, info, out.data(), pitch), 1);
        EXPECT_EQ(module_close(instance), 1);
        for (int32_t y = 0; y < source.height(); ++y) {
            for (int32_t x = 0; x < source.width(); ++x)
                EXPECT_EQ(source.read(out.data(), pitch, x, y), source.pixel(x, y));
            for (int32_t p = source.width() * source.pixelBytes(); p < pitch; ++p)
                EXPECT_EQ(out[static_cast<size_t>(y) * pitch + p], 0x5A) << "padding touched";
        }
        gfree(info);
    }
}

TEST_F(ModuleTest, RunNewAlignsRowsAndHandsBackRecordAndPixels) {
    struct Case {
        int32_t width, bpp, align, rowbytes;
    };
    const Case cases[] = {{5, 8, 1, 5}, {5, 8, 4, 8}, {5, 32, 4, 20}, {3, 32, 16, 16}};
    for (const Case& c : cases) {
        TestImage source(c.width, 3, c.bpp, 1);
        ImageEntry entry = source.entry();
        ModuleResult result{};
        ASSERT_EQ(module_run_new(kFNil, 1, &entry, 0, nullptr, c.align, &result), 1);
        EXPECT_EQ(result.rowbytes, c.rowbytes);
        EXPECT_EQ(result.info->width, c.width);
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < c.width; ++x)
                EXPECT_EQ(source.read(result.pixels, result.rowbytes, x, y), source.pixel(x, y));
        module_result_free(&result);
        EXPECT_EQ(result.info, nullptr);
    }
}

TEST_F(ModuleTest, RunNamedRestoresTheCallersModule) {
    TestImage source(4, 3, 32);
    ImageEntry entry = source.entry();
    const ModuleValue vertical = ModuleValue::ofInt(2);

    module_select(kXcolour);
    ModuleResult result{};
    ASSERT_EQ(module_run_named("flip", 1, &entry, 1, &vertical, &result), 1);
    EXPECT_EQ(module_current(), kXcolour);
    EXPECT_EQ(result.rowbytes, 16) << "rows are not padded";
    EXPECT_EQ(source.read(result.pixels, result.rowbytes, 1, 0), source.pixel(1, 2));
    module_result_free(&result);

    // An unknown name runs the identity filter.
    module_select(kBlend);
    ASSERT_EQ(module_run_named("no such module", 1, &entry, 0, nullptr, &result), 1);
    EXPECT_EQ(module_current(), kBlend);
    EXPECT_EQ(source.read(result.pixels, result.rowbytes, 3, 2), source.pixel(3, 2));
    module_result_free(&result);

    // A module that refuses to open (here: no image) fails cleanly and
    // still restores.
    PrintCapture capture;
    module_select(kFlip);
    EXPECT_EQ(module_run_named("Blend", 0, &entry, 0, nullptr, &result), 0);
    EXPECT_EQ(result.info, nullptr);
    EXPECT_EQ(result.pixels, nullptr);
    EXPECT_EQ(module_current(), kFlip);
}

TEST_F(ModuleTest, ValuesFromTextFollowTheParameterType) {
    module_select(kBlend);
    ModuleDescriptor* blend = module_describe();
    module_select(kFlip);
    ModuleDescriptor* flip = module_describe();
    ASSERT_TRUE(blend && flip);
    const ModuleParam* direction = &flip->params[0];
    const ModuleParam* method = &blend->params[0];
    const ModuleParam* colour = &blend->params[1];
    const ModuleParam* percentage = &blend->params[2];

    struct IntCase {
        const ModuleParam* param;
        const char* text;
        uint32_t value;
    };
    const IntCase ints[] = {
        {direction, "2", 2},    {direction, "Vertical", 2},
        {direction, "BOTH", 3}, {direction, "none", 0},
        {direction, "0x3", 3},  {method, "screen", 8},
        {method, "tmask", 10},  {colour, "0xFFFFFFFF", ~0u},
        {colour, "-1", ~0u},    {colour, "0x80FF0000", 0x80FF0000u},
        {nullptr, "17", 17},
    };
    for (const IntCase& c : ints) {
        ModuleValue v{};
        EXPECT_EQ(module_value_from_text(c.param, c.text, &v), 1) << c.text;
        EXPECT_EQ(v.asUint(), c.value) << c.text;
    }
    ModuleValue v{};
    EXPECT_EQ(module_value_from_text(percentage, "-50.5", &v), 1);
    EXPECT_DOUBLE_EQ(v.asReal(), -50.5);
    EXPECT_EQ(module_value_from_text(nullptr, "0.25", &v), 1);
    EXPECT_DOUBLE_EQ(v.asReal(), 0.25);
    for (const char* bad : {"", "Diagonal", "Vert", "2x", "0x100000000"})
        EXPECT_EQ(module_value_from_text(direction, bad, &v), 0) << bad;
    EXPECT_EQ(module_value_from_text(percentage, "lots", &v), 0);
    gfree(blend);
    gfree(flip);
}

} // namespace
