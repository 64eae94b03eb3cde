#pragma once
// Helpers for tests that go through the real codec library.

#include "codec/FrameIO.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zytest {

// Binds the library built with the tests (TAVIX_DRIVERNAME = its path).
void bindBuiltLibrary();

// A frame of `width` x `height` with a recognisable pattern: 8-bit frames
// get a 256-colour palette with varied alpha, 32-bit frames varied ARGB.
TavixFrame makeFrame(int width, int height, int bufferbpp, const char* name = "");

// The frame's pixels as ARGB words, palette looked up (row padding dropped).
std::vector<uint32_t> argbPixels(const TavixFrame& frame);

// A fresh folder under the system's temporary folder, removed on destruction.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    const std::filesystem::path& path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

} // namespace zytest
