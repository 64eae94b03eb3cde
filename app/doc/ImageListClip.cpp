#include "app/doc/ImageListClip.h"

#include "app/doc/TavixImage.h"
#include "imaging/module/authoring.h"

#include <cstring>

namespace {

constexpr char kMagic[4] = {'Z', 'Y', 'I', 'L'};
constexpr uint32_t kVersion = 1;
// A list larger than this is not ours.
constexpr uint32_t kMaxImages = 100000;

void put(std::string& out, uint32_t v) {
    out.append(reinterpret_cast<const char*>(&v), sizeof v);
}

class Reader {
  public:
    explicit Reader(const std::string& block) : m_Block(block) {}
    bool get(uint32_t& v) { return take(&v, sizeof v); }
    bool take(void* to, size_t n) {
        if (n > left()) return false;
        memcpy(to, m_Block.data() + m_At, n);
        m_At += n;
        return true;
    }
    const char* peek(size_t n) const { return n <= left() ? m_Block.data() + m_At : nullptr; }
    void skip(size_t n) { m_At += n; }
    size_t left() const { return m_Block.size() - m_At; }

  private:
    const std::string& m_Block;
    size_t m_At = 0;
};

std::unique_ptr<CTavixImage> readImage(Reader& in) {
    uint32_t infoSize = 0, pitch = 0;
    if (!in.get(infoSize) || infoSize < sizeof(TavixInfo) || infoSize > in.left()) return nullptr;
    // The record is copied into aligned storage before it is looked at.
    std::unique_ptr<uint32_t[]> record(new uint32_t[(infoSize + 3) / 4]());
    in.take(record.get(), infoSize);
    auto* info = reinterpret_cast<TavixInfo*>(record.get());
    if (static_cast<uint32_t>(info->size) != infoSize || !module_info_ok(info)) return nullptr;
    if (!in.get(pitch)) return nullptr;
    const uint64_t rowBytes = (static_cast<uint64_t>(info->width) * info->bufferbpp + 7) / 8;
    const uint64_t bytes = static_cast<uint64_t>(pitch) * info->height;
    if (pitch < rowBytes || bytes > in.left()) return nullptr;
    auto image = std::make_unique<CTavixImage>();
    image->SetInformation(*info);
    if (image->GetPitch() != static_cast<int32_t>(pitch)) return nullptr;
    image->LoadPixelRows({image->GetInfo(), in.peek(bytes), static_cast<int32_t>(pitch)});
    image->TakeModifiedMark();
    in.skip(bytes);
    return image;
}

} // namespace

std::string EncodeImageList(const std::vector<const CTavixImage*>& images) {
    std::string out(kMagic, sizeof kMagic);
    put(out, kVersion);
    put(out, static_cast<uint32_t>(images.size()));
    for (const CTavixImage* image : images) {
        const uint32_t infoSize = static_cast<uint32_t>(image->GetInfoSize());
        put(out, infoSize);
        out.append(reinterpret_cast<const char*>(image->GetInfo()), infoSize);
        put(out, static_cast<uint32_t>(image->GetPitch()));
        out.append(reinterpret_cast<const char*>(image->GetBits()),
                   static_cast<size_t>(image->GetImageSize()));
    }
    return out;
}

std::vector<std::unique_ptr<CTavixImage>> DecodeImageList(const std::string& block) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    Reader in(block);
    char magic[4];
    uint32_t version = 0, count = 0;
    if (!in.take(magic, sizeof magic) || memcmp(magic, kMagic, sizeof magic) != 0 ||
        !in.get(version) || version != kVersion || !in.get(count) || count > kMaxImages)
        return {};
    try {
        for (uint32_t i = 0; i < count; ++i) {
            std::unique_ptr<CTavixImage> image = readImage(in);
            if (!image) return {};
            images.push_back(std::move(image));
        }
    } catch (const std::exception&) {
        // A record the image refuses, or no memory for it: not a list.
        return {};
    }
    if (in.left() != 0) return {};
    return images;
}
