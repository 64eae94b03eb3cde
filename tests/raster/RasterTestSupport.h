#pragma once
// Helpers for the raster format tests: building files byte by byte, reading
// and writing through the bound codec library, and asking ImageMagick for
// its view of a file.

#include "CodecTestSupport.h"

#include "codec/FrameIO.h"

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace rastertest {

using zytest::TempFolder;

// Little-endian (and big-endian where asked) byte assembly for fixtures.
class ByteBuilder {
  public:
    ByteBuilder& u8(uint32_t v);
    ByteBuilder& u16(uint32_t v);
    ByteBuilder& u32(uint32_t v);
    ByteBuilder& u32be(uint32_t v);
    ByteBuilder& raw(const std::vector<uint8_t>& bytes);
    // Each colour's blue, green and red bytes, as 24-bit pixels store them.
    ByteBuilder& bgr(std::initializer_list<uint32_t> colours);
    ByteBuilder& text(const char* s); // without its terminator
    ByteBuilder& zeros(size_t n);
    size_t size() const { return m_bytes.size(); }
    void patch32(size_t at, uint32_t v);
    const std::vector<uint8_t>& bytes() const { return m_bytes; }

  private:
    std::vector<uint8_t> m_bytes;
};

// A PNG file from chunks: signature, then each chunk with its CRC.
class PngBuilder {
  public:
    PngBuilder();
    PngBuilder& chunk(const char* type, const std::vector<uint8_t>& data);
    PngBuilder& header(uint32_t width, uint32_t height, int depth, int colourType,
                       int interlace = 0);
    // IDAT holding `rows` (each with its leading filter byte) deflated.
    PngBuilder& imageData(const std::vector<uint8_t>& rows);
    PngBuilder& end();
    const std::vector<uint8_t>& bytes() const { return m_bytes; }

  private:
    std::vector<uint8_t> m_bytes;
};

std::vector<uint8_t> deflate(const std::vector<uint8_t>& data);

void writeBytes(const std::filesystem::path& path, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> readBytes(const std::filesystem::path& path);

// One decoded image, as a test wants to look at it.
struct Image {
    bool ok = false;
    std::string error;
    int driver = -1;
    int frames = 0;
    TavixInfo info{};
    std::vector<uint32_t> argb;   // every pixel's colour, palette looked up
    std::vector<uint8_t> indices; // indexed frames only
};

// Binds the built library (once) and reads the file through it.
Image readImage(const std::filesystem::path& path);

// Frames built from plain values; `alphabits` goes into the record.
TavixFrame indexedFrame(int width, int height, const std::vector<uint32_t>& palette,
                        const std::vector<uint8_t>& indices, int alphabits);
TavixFrame trueColourFrame(int width, int height, const std::vector<uint32_t>& argb, int alphabits);

// Writes through the library with the driver of that short name.
bool writeImage(const std::filesystem::path& path, const char* driver, const TavixFrame& frame,
                std::string* error = nullptr);

int driverIndex(const char* shortname);

// ImageMagick's `convert`, or nothing when it is not installed.
std::optional<std::string> convertTool();
// Runs convert with the arguments (already quoted for the shell); true on success.
bool runConvert(const std::string& arguments);
// ImageMagick's reading of the file, oriented as the file says, as ARGB words.
std::vector<uint32_t> magickPixels(const std::filesystem::path& path);

// Collects every line the library prints while it lives.
class MessageCapture {
  public:
    MessageCapture();
    ~MessageCapture();
    const std::string& text() const;
};

// "0xAARRGGBB" for failure messages.
std::string hex(uint32_t argb);
// Index and values of the first difference, or empty when equal.
std::string firstDifference(const std::vector<uint32_t>& want, const std::vector<uint32_t>& got);

} // namespace rastertest
