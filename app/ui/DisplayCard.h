#pragma once
// The link to the artist download card: a viewer on target hardware that
// receives the focused image over TCP. Every message opens a connection to
// the configured address, sends, and closes; all words are 32-bit
// big-endian. A card that cannot be reached gets nothing and nobody is told.

#include <cstdint>
#include <string>
#include <vector>

class CProfile;
class CTavixImage;

constexpr const char* kAdsSection = "ADS";
constexpr int kAdsDefaultPort = 7777;
constexpr int kAdsConnectTimeoutMs = 1500;
constexpr int kAdsImageHeaderSize = 1048;

// Settings in section "ADS".
struct CAdsSettings {
    std::string m_IP = "localhost";
    int m_Port = kAdsDefaultPort;
    int m_Width = 512;
    int m_Height = 240;
    int m_Bpp = 16;
    uint32_t m_BackColor = 0xFF000000;

    void Load(const CProfile& profile);
    void Save(CProfile& profile) const;
};

// 1, 24, Width, Height, Bpp, BackColor.
std::vector<uint8_t> BuildConfigureMessage(const CAdsSettings& settings);

// 2, message length, width, height, bits per pixel, row pitch, 256 palette
// words (0xAARRGGBB), then the pixel rows as the bitmap holds them.
std::vector<uint8_t> BuildImageMessage(const CTavixImage& image);

// Connects to host:port within the timeout, sends every byte and closes.
// False, silently, when any step fails.
bool SendToDisplayCard(const std::string& host, int port, const std::vector<uint8_t>& message,
                       int timeoutMs = kAdsConnectTimeoutMs);

// The configure message with the profile's settings.
bool SendDisplayCardConfiguration(const CProfile& profile);
// The image message for `image` with the profile's address.
bool SendDisplayCardImage(const CProfile& profile, const CTavixImage& image);
