#include "app/ui/DisplayCard.h"

#include "app/doc/Profile.h"
#include "app/doc/TavixImage.h"

#include <QTcpSocket>

#include <cstring>

namespace {

void putWord(std::vector<uint8_t>& out, uint32_t word) {
    out.push_back(static_cast<uint8_t>(word >> 24));
    out.push_back(static_cast<uint8_t>(word >> 16));
    out.push_back(static_cast<uint8_t>(word >> 8));
    out.push_back(static_cast<uint8_t>(word));
}

} // namespace

void CAdsSettings::Load(const CProfile& p) {
    const CAdsSettings d;
    m_IP = p.GetString(kAdsSection, "IP", d.m_IP);
    m_Port = p.GetInt(kAdsSection, "Port", d.m_Port);
    m_Width = p.GetInt(kAdsSection, "Width", d.m_Width);
    m_Height = p.GetInt(kAdsSection, "Height", d.m_Height);
    m_Bpp = p.GetInt(kAdsSection, "Bpp", d.m_Bpp);
    m_BackColor =
        static_cast<uint32_t>(p.GetInt(kAdsSection, "BackColor", static_cast<int>(d.m_BackColor)));
}

void CAdsSettings::Save(CProfile& p) const {
    p.WriteString(kAdsSection, "IP", m_IP);
    p.WriteInt(kAdsSection, "Port", m_Port);
    p.WriteInt(kAdsSection, "Width", m_Width);
    p.WriteInt(kAdsSection, "Height", m_Height);
    p.WriteInt(kAdsSection, "Bpp", m_Bpp);
    p.WriteInt(kAdsSection, "BackColor", static_cast<int>(m_BackColor));
}

std::vector<uint8_t> BuildConfigureMessage(const CAdsSettings& s) {
    std::vector<uint8_t> out;
    for (uint32_t word :
         {1u, 24u, static_cast<uint32_t>(s.m_Width), static_cast<uint32_t>(s.m_Height),
          static_cast<uint32_t>(s.m_Bpp), s.m_BackColor})
        putWord(out, word);
    return out;
}

std::vector<uint8_t> BuildImageMessage(const CTavixImage& image) {
    const uint32_t pitch = static_cast<uint32_t>(image.GetPitch());
    const uint32_t height = static_cast<uint32_t>(image.GetHeight());
    const size_t pixelBytes = static_cast<size_t>(pitch) * height;
    std::vector<uint8_t> out;
    out.reserve(kAdsImageHeaderSize + pixelBytes);
    putWord(out, 2);
    putWord(out, static_cast<uint32_t>(pixelBytes + kAdsImageHeaderSize));
    putWord(out, static_cast<uint32_t>(image.GetWidth()));
    putWord(out, height);
    putWord(out, static_cast<uint32_t>(image.GetBitCount()));
    putWord(out, pitch);
    const TavixInfo* info = image.GetInfo();
    for (int i = 0; i < 256; ++i) {
        const TavixColour& c = info->colours[i];
        putWord(out, static_cast<uint32_t>(c.alpha) << 24 | static_cast<uint32_t>(c.red) << 16 |
                         static_cast<uint32_t>(c.green) << 8 | c.blue);
    }
    if (pixelBytes && image.GetBits())
        out.insert(out.end(), image.GetBits(), image.GetBits() + pixelBytes);
    return out;
}

bool SendToDisplayCard(const std::string& host, int port, const std::vector<uint8_t>& message,
                       int timeoutMs) {
    if (host.empty() || port <= 0 || port > 65535) return false;
    QTcpSocket socket;
    socket.connectToHost(QString::fromStdString(host), static_cast<quint16>(port));
    if (!socket.waitForConnected(timeoutMs)) return false;
    const char* data = reinterpret_cast<const char*>(message.data());
    qint64 left = static_cast<qint64>(message.size());
    while (left > 0) {
        qint64 written = socket.write(data, left);
        if (written < 0) return false;
        data += written;
        left -= written;
    }
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(timeoutMs)) return false;
    socket.disconnectFromHost();
    if (socket.state() != QAbstractSocket::UnconnectedState) socket.waitForDisconnected(timeoutMs);
    return true;
}

bool SendDisplayCardConfiguration(const CProfile& profile) {
    CAdsSettings settings;
    settings.Load(profile);
    return SendToDisplayCard(settings.m_IP, settings.m_Port, BuildConfigureMessage(settings));
}

bool SendDisplayCardImage(const CProfile& profile, const CTavixImage& image) {
    CAdsSettings settings;
    settings.Load(profile);
    return SendToDisplayCard(settings.m_IP, settings.m_Port, BuildImageMessage(image));
}
