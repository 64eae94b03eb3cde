#include "CodecTestSupport.h"

#include "codec/TavixBinding.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace zytest {

void bindBuiltLibrary() {
    if (TavixIsBound() && TavixLibraryPath() == ZY_TAVIX_LIBRARY) return;
    setenv("TAVIX_DRIVERNAME", ZY_TAVIX_LIBRARY, 1);
    ASSERT_TRUE(TavixBind()) << "cannot bind " << ZY_TAVIX_LIBRARY;
}

TavixFrame makeFrame(int width, int height, int bufferbpp, const char* name) {
    TavixFrame frame;
    frame.info = NewTavixInfo();
    TavixInfo& info = *frame.info;
    info.width = width;
    info.height = height;
    info.bufferbpp = bufferbpp <= 8 ? 8 : 32;
    info.bpp = info.bufferbpp;
    if (info.bufferbpp == 32) info.alphabits = info.redbits = info.greenbits = info.bluebits = 8;
    snprintf(info.framename, sizeof info.framename, "%s", name);
    frame.pitch = TavixRowPitch(width, info.bufferbpp);
    frame.pixels.assign(static_cast<size_t>(frame.pitch) * height, 0);
    if (info.bufferbpp == 8) {
        info.numcolours = 256;
        for (int i = 0; i < 256; ++i)
            info.colours[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i),
                               static_cast<uint8_t>(i * 7),
                               static_cast<uint8_t>(i < 16 ? i * 16 : 255)};
    }
    for (int y = 0; y < height; ++y) {
        uint8_t* row = frame.pixels.data() + static_cast<size_t>(y) * frame.pitch;
        for (int x = 0; x < width; ++x) {
            if (info.bufferbpp == 8) {
                row[x] = static_cast<uint8_t>(x * 3 + y * 5);
            } else {
                uint32_t argb = static_cast<uint32_t>((x * 40 + y) & 255) << 24 |
                                static_cast<uint32_t>(x * 11 & 255) << 16 | (y * 13 & 255) << 8 |
                                ((x ^ y) & 255);
                memcpy(row + 4 * x, &argb, 4);
            }
        }
    }
    return frame;
}

std::vector<uint32_t> argbPixels(const TavixFrame& frame) {
    const TavixInfo& info = *frame.info;
    std::vector<uint32_t> out;
    for (int y = 0; y < info.height; ++y) {
        const uint8_t* row = frame.pixels.data() + static_cast<size_t>(y) * frame.pitch;
        for (int x = 0; x < info.width; ++x) {
            if (info.bufferbpp <= 8) {
                const TavixColour& c = info.colours[row[x]];
                out.push_back(static_cast<uint32_t>(c.alpha) << 24 | c.red << 16 | c.green << 8 |
                              c.blue);
            } else {
                uint32_t argb;
                memcpy(&argb, row + 4 * x, 4);
                out.push_back(argb);
            }
        }
    }
    return out;
}

TempFolder::TempFolder() {
    static std::atomic<int> counter{0};
    m_path = std::filesystem::temp_directory_path() /
             ("zy-test-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace zytest
