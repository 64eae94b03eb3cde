// Mipmap and mipmont: level count, sizes, names, flags, methods, indexed
// sources, the process protocol and allocation failures.

#include "support.h"

#include <cstring>

namespace {

constexpr int32_t kMipLevel = 0x200;

// Every level of one Mipmap run, collected the way a caller does it: query
// output i, allocate, process, until query output gives null.
struct Chain {
    std::vector<Picture> levels;
    int extraProcess = -1; // what process returned after the last level
};

Chain mipmap(const Picture& in, std::vector<ModuleValue> values) {
    Chain chain;
    module_find("Mipmap");
    ImageEntry entry = in.entry();
    ModuleInstance* instance = nullptr;
    EXPECT_EQ(module_open(&instance, 1, &entry, int32_t(values.size()), values.data()), 1);
    if (!instance) return chain;
    for (int32_t i = 0;; ++i) {
        TavixInfo* info = module_query(instance, i);
        if (!info) break;
        Picture level(info->width, info->height, info->bufferbpp, 3);
        memcpy(level.record.data(), info, sizeof(TavixInfo));
        gfree(info);
        EXPECT_EQ(module_process(instance, level.info(), level.pixels.data(), level.rowbytes), 1);
        chain.levels.push_back(level);
    }
    std::vector<uint8_t> spare(16, 0x5A);
    chain.extraProcess = module_process(instance, nullptr, spare.data(), 4);
    EXPECT_EQ(spare, std::vector<uint8_t>(16, 0x5A)) << "nothing written after the last level";
    EXPECT_EQ(module_query(instance, -1), nullptr);
    module_close(instance);
    return chain;
}

class MipmapModule : public ResampleTest {};

TEST_F(MipmapModule, LevelSizesNamesAndFlag) {
    Picture in(randomImage(1, 256, 128));
    strcpy(in.info()->framename, "rock");
    Chain chain = mipmap(in, {I(1), I(4)});
    ASSERT_EQ(chain.levels.size(), 4u);
    const char* names[] = {"rock", "rock_mm01", "rock_mm02", "rock_mm03"};
    for (int32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(chain.levels[i].width(), 256 >> i);
        EXPECT_EQ(chain.levels[i].height(), 128 >> i);
        EXPECT_STREQ(chain.levels[i].info()->framename, names[i]);
        EXPECT_EQ(chain.levels[i].info()->attributes & kMipLevel, uint32_t(kMipLevel));
    }
    EXPECT_EQ(chain.extraProcess, 0);

    in.info()->attributes = kMipLevel | 0x1000;
    Chain collapsed = mipmap(in, {I(1), I(4), I(1), I(256), I(128), I(0), U(0), I(0), I(1)});
    for (const Picture& level : collapsed.levels)
        EXPECT_EQ(level.info()->attributes, 0x1000u);
}

TEST_F(MipmapModule, LevelCountRule) {
    struct Case {
        int32_t w, h, levels, minLevels, expected;
    };
    const Case cases[] = {
        {256, 128, 4, 1, 4},      {256, 128, 10, 1, 8}, // 128 .. 1 on the short side
        {256, 128, 16, 1, 8},     {256, 128, 1, 3, 3},  // MinLevels raises Levels
        {8, 8, 1, 20, 4},         {300, 200, 10, 1, 8}, // never past one pixel
        {1, 1, 10, 1, 1},         {5, 3, 10, 1, 2},      {4, 1, 10, 1, 1},
        {1024, 1024, 200, 1, 11}, {1024, 16, 200, 1, 5},
    };
    for (const Case& c : cases) {
        Picture in(c.w, c.h);
        Chain chain = mipmap(in, {I(1), I(c.levels), I(c.minLevels)});
        EXPECT_EQ(int32_t(chain.levels.size()), c.expected)
            << c.w << "x" << c.h << " Levels " << c.levels << " MinLevels " << c.minLevels;
        for (size_t i = 1; i < chain.levels.size(); ++i)
            EXPECT_GE(chain.levels[i].height(), 1);
    }
}

TEST_F(MipmapModule, ClearLastNPaintsTheSmallestLevels) {
    Picture in(randomImage(2, 32, 16));
    Chain chain = mipmap(in, {I(1), I(4), I(1), I(32), I(16), I(2), U(0xFF336699)});
    ASSERT_EQ(chain.levels.size(), 4u);
    for (int32_t i = 0; i < 4; ++i) {
        bool plain = true;
        for (uint32_t p : chain.levels[i].image().px)
            plain = plain && p == 0xFF336699u;
        EXPECT_EQ(plain, i >= 2) << "level " << i;
    }
}

TEST_F(MipmapModule, LevelZeroIsAByteForByteCopyAtTheSourceSize) {
    for (int32_t bpp : {8, 32}) {
        Picture in(randomImage(3, 24, 10), 5);
        if (bpp == 8) {
            Picture indexed(24, 10, 8, 5);
            for (int32_t y = 0; y < 10; ++y)
                for (int32_t x = 0; x < 24; ++x)
                    indexed.set(x, y, in.at(x, y) & 0xFF);
            in = indexed;
        }
        // Method 3 reduces every level of an indexed source anew.
        for (int32_t method :
             bpp == 8 ? std::vector<int32_t>{0, 1} : std::vector<int32_t>{0, 1, 3}) {
            Chain chain = mipmap(in, {I(method), I(3)});
            ASSERT_FALSE(chain.levels.empty());
            for (int32_t y = 0; y < 10; ++y)
                EXPECT_EQ(chain.levels[0].rowBytes(y), in.rowBytes(y)) << bpp << " " << method;
            EXPECT_EQ(memcmp(chain.levels[0].info(), in.info(), offsetof(TavixInfo, attributes)),
                      0);
        }
    }
}

TEST_F(MipmapModule, NoValuesMeansMethod3TenLevelsAtTheSourceSize) {
    Picture in(randomImage(4, 64, 32, 50));
    Chain chain = mipmap(in, {});
    ASSERT_EQ(chain.levels.size(), 6u); // 32 .. 1 on the short side
    Picture expected = runModule("Size", in, {I(32), I(16), I(0), I(0), U(0), R(1), R(1)});
    EXPECT_EQ(chain.levels[1].image().px, expected.image().px);
}

TEST_F(MipmapModule, MethodsBuildEachLevelFromTheOneBefore) {
    Picture in(randomImage(5, 40, 24, 100));
    struct Case {
        int32_t method;
        const char* module;
        std::vector<ModuleValue> values; // for level 1 from level 0
    };
    const Case cases[] = {
        {1, "Halfsize", {I(3), I(0), I(0), I(0), I(0), I(0), I(0)}},
        {0, "Scale", {I(20), I(12)}},
        {2, "Size", {I(20), I(12), I(0), I(1), U(0), R(1), R(1)}},
        {5, "Size", {I(20), I(12), I(0), I(1), U(0), R(1), R(1)}},
    };
    for (const Case& c : cases) {
        Chain chain = mipmap(in, {I(c.method), I(3), I(1), I(40), I(24), I(0), U(0), I(1)});
        ASSERT_EQ(chain.levels.size(), 3u);
        Picture level1 = runModule(c.module, chain.levels[0], c.values);
        EXPECT_EQ(chain.levels[1].image().px, level1.image().px) << c.method;
        Picture level2 = runModule(
            c.module, level1,
            c.method == 1 ? c.values
                          : std::vector<ModuleValue>{I(10), I(6), I(0), I(1), U(0), R(1), R(1)});
        if (c.method != 0) {
            EXPECT_EQ(chain.levels[2].image().px, level2.image().px) << c.method;
        }
    }
}

TEST_F(MipmapModule, ResizedLevelZeroUsesPointForMethod1AndLanczosOtherwise) {
    Picture in(randomImage(6, 30, 20));
    for (int32_t method : {1, 3}) {
        Chain chain = mipmap(in, {I(method), I(2), I(1), I(16), I(8)});
        ASSERT_EQ(chain.levels.size(), 2u);
        int32_t filter = method == 1 ? 4 : 0;
        EXPECT_EQ(
            chain.levels[0].image().px,
            runModule("Size", in, {I(16), I(8), I(filter), I(0), U(0), R(1), R(1)}).image().px)
            << method;
    }
}

Picture indexedSource() {
    Picture in(64, 8, 8);
    for (int32_t i = 0; i < 256; ++i)
        in.info()->colours[i] = TavixColour{uint8_t(i), uint8_t(i), uint8_t(i), 255};
    in.info()->numcolours = 200;
    in.info()->redbits = in.info()->greenbits = in.info()->bluebits = 6;
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 64; ++x)
            in.set(x, y, uint32_t(x < 32 ? 40 : 120));
    return in;
}

TEST_F(MipmapModule, IndexedSourcesKeepTheirPaletteFormat) {
    Picture in = indexedSource();
    for (int32_t method : {1, 2, 3, 4}) {
        Chain chain = mipmap(in, {I(method), I(3)});
        ASSERT_EQ(chain.levels.size(), 3u) << method;
        const bool reduced = method >= 3;
        for (const Picture& level : chain.levels) {
            EXPECT_EQ(level.info()->bufferbpp, 8) << method;
            EXPECT_EQ(level.info()->numcolours, 200) << method;
            EXPECT_EQ(level.info()->redbits, 6) << method;
            // Reduced levels share a new palette in entries 0 .. 199; the
            // entries beyond stay the source's.
            const size_t kept = reduced ? 200 : 0;
            EXPECT_EQ(memcmp(level.info()->colours + kept, in.info()->colours + kept,
                             (256 - kept) * sizeof(TavixColour)),
                      0);
            EXPECT_EQ(memcmp(level.info()->colours, chain.levels[0].info()->colours, 1024), 0);
        }
        // Far from the seam every level keeps the two greys (at 6 bits a
        // channel, 120 is held to 121).
        const Picture& last = chain.levels[2];
        const TavixColour* palette = last.info()->colours;
        EXPECT_EQ(palette[last.at(0, 0)].green, 40) << method;
        EXPECT_NEAR(palette[last.at(15, 1)].green, 120, 1) << method;
    }
    // Method 2 on indices halves like Method 1: a seam pixel is one of the
    // two indices, never a filtered grey in between.
    Chain two = mipmap(in, {I(2), I(2)});
    Chain one = mipmap(in, {I(1), I(2)});
    EXPECT_EQ(two.levels[1].pixels, one.levels[1].pixels);
}

// An image owning entries 16 .. 31 of its palette keeps to them in every
// level, made by the quantizer (Method 3) or painted (ClearLastN).
TEST_F(MipmapModule, IndexedLevelsStayInTheImagesPaletteRange) {
    Picture in(8, 8, 8);
    for (int32_t i = 0; i < 256; ++i)
        in.info()->colours[i] = TavixColour{0, 0, 0, 255};
    for (int32_t i = 0; i < 16; ++i)
        in.info()->colours[16 + i] = TavixColour{uint8_t(i * 16), uint8_t(255 - i * 16), 80, 255};
    in.info()->startcolour = 16;
    in.info()->numcolours = 16;
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 8; ++x)
            in.set(x, y, uint32_t(16 + (x + 2 * y) % 16));
    const struct {
        std::vector<ModuleValue> values;
    } cases[] = {{{I(3), I(4)}}, {{I(1), I(4), I(1), I(8), I(8), I(2), U(0xFF00FF50)}}};
    for (const auto& c : cases) {
        Chain chain = mipmap(in, c.values);
        ASSERT_EQ(chain.levels.size(), 4u);
        for (const Picture& level : chain.levels) {
            EXPECT_EQ(level.info()->startcolour, 16);
            for (uint32_t index : level.image().px)
                EXPECT_TRUE(index >= 16 && index < 32) << index;
        }
    }
    // The painted levels take the owned entry nearest the background.
    Chain painted = mipmap(in, cases[1].values);
    EXPECT_EQ(painted.levels[3].at(0, 0), 18u); // blue 32, green 223 (a tie with 19)
}

TEST_F(MipmapModule, ProcessRefusesAResultOfTheWrongSize) {
    Picture in(8, 8);
    module_find("Mipmap");
    ImageEntry entry = in.entry();
    const ModuleValue values[] = {I(1), I(2)};
    ModuleInstance* instance = nullptr;
    ASSERT_EQ(module_open(&instance, 1, &entry, 2, values), 1);
    Picture wrong(4, 4);
    {
        Printed printed;
        EXPECT_EQ(module_process(instance, wrong.info(), wrong.pixels.data(), wrong.rowbytes), 0);
        EXPECT_EQ(Printed::lines().size(), 1u);
    }
    Picture right(8, 8);
    EXPECT_EQ(module_process(instance, right.info(), right.pixels.data(), right.rowbytes), 1);
    EXPECT_EQ(module_process(instance, wrong.info(), wrong.pixels.data(), wrong.rowbytes), 1);
    EXPECT_EQ(module_process(instance, wrong.info(), wrong.pixels.data(), wrong.rowbytes), 0);
    module_close(instance);
}

TEST_F(MipmapModule, AllocationFailuresAtEveryStepFailCleanly) {
    Picture in = indexedSource(); // the longest path: expand, filter, reduce
    ImageEntry entry = in.entry();
    const ModuleValue values[] = {I(3), I(4), I(1), I(64), I(8), I(1), U(0xFF00FF00)};
    int32_t index = module_find("Mipmap");
    Printed quiet;
    int32_t failures = 0;
    for (int32_t extra = 0; extra < 400; ++extra) {
        allowMore(extra);
        module_select(index);
        ModuleInstance* instance = reinterpret_cast<ModuleInstance*>(&entry);
        int ok = module_open(&instance, 1, &entry, 7, values);
        unsetenv("GALLOCMAX");
        galloc_reload_limit();
        EXPECT_EQ(module_current(), index) << "the current module is restored";
        if (!ok) {
            EXPECT_EQ(instance, nullptr);
            EXPECT_EQ(galloc_live_count(), m_Live) << extra;
            ++failures;
            continue;
        }
        module_close(instance);
        break;
    }
    EXPECT_GT(failures, 20);
    EXPECT_EQ(galloc_live_count(), m_Live);
}

// ---- mipmont -------------------------------------------------------------------

TEST_F(MipmapModule, MipmontLaysTheLevelsOut) {
    struct Case {
        int32_t w, h, vbt, outW, outH;
        TavixHotSpot level1, level2;
    };
    const Case cases[] = {
        {8, 4, 0, 12, 4, {8, 0}, {8, 2}},
        {8, 4, 1, 8, 6, {0, 4}, {4, 4}},
        {4, 1, 0, 6, 2, {4, 0}, {4, 1}},
    };
    for (const Case& c : cases) {
        Picture in(randomImage(7, c.w, c.h), 2);
        Picture out = runModule("mipmont", in, {I(c.vbt)});
        ASSERT_EQ(out.width(), c.outW) << c.w << "x" << c.h << " " << c.vbt;
        ASSERT_EQ(out.height(), c.outH);
        EXPECT_EQ(out.at(c.w - 1, c.h - 1), in.at(c.w - 1, c.h - 1));
        Picture half = runModule("Halfsize", in, {I(c.h > 1 ? 3 : 2)});
        EXPECT_EQ(out.at(c.level1.x, c.level1.y), half.at(0, 0));
        Picture quarter = runModule("Halfsize", half, {I(half.height() > 1 ? 3 : 2)});
        EXPECT_EQ(out.at(c.level2.x, c.level2.y), quarter.at(0, 0));
    }
}

TEST_F(MipmapModule, MipmontRefusesOtherSizesWithItsMessage) {
    Picture in(randomImage(8, 6, 4));
    Printed printed;
    Picture out = runModule("mipmont", in, {});
    ASSERT_EQ(Printed::lines().size(), 1u);
    EXPECT_EQ(Printed::lines()[0],
              "ERROR: Base texture is not a power of 2 image will not be mipmont.\n");
    EXPECT_EQ(out.image().px, in.image().px);
}

} // namespace
