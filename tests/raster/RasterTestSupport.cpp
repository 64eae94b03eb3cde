#include "RasterTestSupport.h"

#include "codec/TavixBinding.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace rastertest {

ByteBuilder& ByteBuilder::u8(uint32_t v) {
    m_bytes.push_back(static_cast<uint8_t>(v));
    return *this;
}
ByteBuilder& ByteBuilder::u16(uint32_t v) {
    return u8(v).u8(v >> 8);
}
ByteBuilder& ByteBuilder::u32(uint32_t v) {
    return u16(v).u16(v >> 16);
}
ByteBuilder& ByteBuilder::u32be(uint32_t v) {
    return u8(v >> 24).u8(v >> 16).u8(v >> 8).u8(v);
}
ByteBuilder& ByteBuilder::raw(const std::vector<uint8_t>& bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}
ByteBuilder& ByteBuilder::bgr(std::initializer_list<uint32_t> colours) {
    for (uint32_t c : colours)
        u8(c).u8(c >> 8).u8(c >> 16);
    return *this;
}
ByteBuilder& ByteBuilder::text(const char* s) {
    m_bytes.insert(m_bytes.end(), s, s + strlen(s));
    return *this;
}
ByteBuilder& ByteBuilder::zeros(size_t n) {
    m_bytes.resize(m_bytes.size() + n, 0);
    return *this;
}
void ByteBuilder::patch32(size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        m_bytes.at(at + i) = static_cast<uint8_t>(v >> (8 * i));
}

PngBuilder::PngBuilder() : m_bytes{137, 80, 78, 71, 13, 10, 26, 10} {}

PngBuilder& PngBuilder::chunk(const char* type, const std::vector<uint8_t>& data) {
    ByteBuilder b;
    b.u32be(static_cast<uint32_t>(data.size())).text(type).raw(data);
    const std::vector<uint8_t>& c = b.bytes();
    uLong crc = crc32(0, c.data() + 4, static_cast<uInt>(c.size() - 4));
    b.u32be(static_cast<uint32_t>(crc));
    m_bytes.insert(m_bytes.end(), b.bytes().begin(), b.bytes().end());
    return *this;
}

PngBuilder& PngBuilder::header(uint32_t width, uint32_t height, int depth, int colourType,
                               int interlace) {
    ByteBuilder b;
    b.u32be(width).u32be(height).u8(depth).u8(colourType).u8(0).u8(0).u8(interlace);
    return chunk("IHDR", b.bytes());
}

PngBuilder& PngBuilder::imageData(const std::vector<uint8_t>& rows) {
    return chunk("IDAT", deflate(rows));
}

PngBuilder& PngBuilder::end() {
    return chunk("IEND", {});
}

std::vector<uint8_t> deflate(const std::vector<uint8_t>& data) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    std::vector<uint8_t> out(size);
    EXPECT_EQ(compress2(out.data(), &size, data.data(), static_cast<uLong>(data.size()), 9), Z_OK);
    out.resize(size);
    return out;
}

void writeBytes(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

std::vector<uint8_t> readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Image readImage(const std::filesystem::path& path) {
    zytest::bindBuiltLibrary();
    Image image;
    TavixReadResult result = TavixReadFile(path.string());
    image.ok = result.ok;
    image.error = result.error;
    image.driver = result.driver;
    image.frames = static_cast<int>(result.frames.size());
    if (!result.ok || result.frames.empty()) {
        image.ok = false;
        return image;
    }
    const TavixFrame& frame = result.frames[0];
    image.info = *frame.info;
    image.argb = zytest::argbPixels(frame);
    if (frame.info->bufferbpp <= 8)
        for (int y = 0; y < frame.info->height; ++y) {
            const uint8_t* row = frame.pixels.data() + static_cast<size_t>(y) * frame.pitch;
            image.indices.insert(image.indices.end(), row, row + frame.info->width);
        }
    return image;
}

TavixFrame indexedFrame(int width, int height, const std::vector<uint32_t>& palette,
                        const std::vector<uint8_t>& indices, int alphabits) {
    TavixFrame frame;
    frame.info = NewTavixInfo();
    TavixInfo& info = *frame.info;
    info.width = width;
    info.height = height;
    info.bufferbpp = info.bpp = 8;
    info.numcolours = static_cast<int32_t>(palette.size());
    info.alphabits = alphabits;
    info.redbits = info.greenbits = info.bluebits = 8;
    for (size_t i = 0; i < palette.size(); ++i) {
        uint32_t c = palette[i];
        info.colours[i] = {static_cast<uint8_t>(c), static_cast<uint8_t>(c >> 8),
                           static_cast<uint8_t>(c >> 16), static_cast<uint8_t>(c >> 24)};
    }
    frame.pitch = TavixRowPitch(width, 8);
    frame.pixels.assign(static_cast<size_t>(frame.pitch) * height, 0xEE); // padding must not matter
    for (int y = 0; y < height; ++y)
        memcpy(&frame.pixels[static_cast<size_t>(y) * frame.pitch],
               &indices[static_cast<size_t>(y) * width], width);
    return frame;
}

TavixFrame trueColourFrame(int width, int height, const std::vector<uint32_t>& argb,
                           int alphabits) {
    TavixFrame frame;
    frame.info = NewTavixInfo();
    TavixInfo& info = *frame.info;
    info.width = width;
    info.height = height;
    info.bufferbpp = info.bpp = 32;
    info.alphabits = alphabits;
    info.redbits = info.greenbits = info.bluebits = 8;
    frame.pitch = TavixRowPitch(width, 32);
    frame.pixels.assign(static_cast<size_t>(frame.pitch) * height, 0);
    for (int y = 0; y < height; ++y)
        memcpy(&frame.pixels[static_cast<size_t>(y) * frame.pitch],
               &argb[static_cast<size_t>(y) * width], 4 * width);
    return frame;
}

int driverIndex(const char* shortname) {
    zytest::bindBuiltLibrary();
    return TavixFind(shortname);
}

bool writeImage(const std::filesystem::path& path, const char* driver, const TavixFrame& frame,
                std::string* error) {
    std::string message;
    bool ok = TavixWriteFile(path.string(), driverIndex(driver), {&frame}, message);
    if (error) *error = message;
    return ok;
}

std::optional<std::string> convertTool() {
    static const std::optional<std::string> found = []() -> std::optional<std::string> {
        if (system("convert -version > /dev/null 2>&1") == 0) return std::string("convert");
        return std::nullopt;
    }();
    return found;
}

bool runConvert(const std::string& arguments) {
    std::string command = "convert " + arguments + " > /dev/null 2>&1";
    int status = system(command.c_str());
    return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// ImageMagick keeps a Targa's rows in file order and records the origin as
// an orientation; -auto-orient turns that into the picture the file means.
// Samples come out at 16 bits and are reduced here by rounding to nearest:
// ImageMagick's own -depth 8 truncates, which no reader is obliged to copy.
std::vector<uint32_t> magickPixels(const std::filesystem::path& path) {
    std::string command =
        "convert '" + path.string() + "' -auto-orient -depth 16 -endian LSB rgba:- 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return {};
    std::vector<uint8_t> bytes;
    uint8_t buffer[4096];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        bytes.insert(bytes.end(), buffer, buffer + got);
    pclose(pipe);
    auto sample = [&](size_t at) {
        uint32_t v = bytes[at] | bytes[at + 1] << 8;
        return (v * 255 + 32767) / 65535;
    };
    std::vector<uint32_t> argb;
    for (size_t i = 0; i + 7 < bytes.size(); i += 8)
        argb.push_back(sample(i + 6) << 24 | sample(i) << 16 | sample(i + 2) << 8 | sample(i + 4));
    return argb;
}

namespace {
std::string g_captured;
GPrintHook g_previousHook = nullptr;
void captureLine(const char* format, va_list args) {
    char text[8192];
    vsnprintf(text, sizeof text, format, args);
    g_captured += text;
}
} // namespace

MessageCapture::MessageCapture() {
    g_captured.clear();
    g_previousHook = gsetprinthook(captureLine);
}
MessageCapture::~MessageCapture() {
    gsetprinthook(g_previousHook);
}
const std::string& MessageCapture::text() const {
    return g_captured;
}

std::string hex(uint32_t argb) {
    char text[16];
    snprintf(text, sizeof text, "0x%08X", argb);
    return text;
}

std::string firstDifference(const std::vector<uint32_t>& want, const std::vector<uint32_t>& got) {
    if (want.size() != got.size())
        return "sizes differ: " + std::to_string(want.size()) + " wanted, " +
               std::to_string(got.size()) + " got";
    for (size_t i = 0; i < want.size(); ++i)
        if (want[i] != got[i])
            return "pixel " + std::to_string(i) + ": wanted " + hex(want[i]) + ", got " +
                   hex(got[i]);
    return {};
}

} // namespace rastertest
