#include "app/doc/TavixImage.h"

#include "app/doc/Exceptions.h"
#include "app/doc/Profile.h"
#include "app/doc/UserInterface.h"
#include "imaging/galloc.h"
#include "tavix/RecordLimits.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

const TavixInfo& zeroRecord() {
    static const TavixInfo zero{};
    return zero;
}

uint32_t argbOf(const TavixColour& c) {
    return static_cast<uint32_t>(c.alpha) << 24 | static_cast<uint32_t>(c.red) << 16 |
           static_cast<uint32_t>(c.green) << 8 | c.blue;
}

// Frees a module instance on every way out of a run.
struct InstanceCloser {
    ModuleInstance* instance = nullptr;
    ~InstanceCloser() {
        if (instance) module_close(instance);
    }
    bool close() {
        ModuleInstance* open = instance;
        instance = nullptr;
        return module_close(open) != 0;
    }
};

bool moduleIndexOk(int module) {
    if (module >= 0 && module < module_count()) return true;
    ZyUi().MessageBox("The filter ID is bad, or the selected filter is unavailable.",
                      MsgButtons::OK, MsgIcon::Information);
    return false;
}

// Makes `module` current; the descriptor its selection yields is not needed.
void selectModule(int module) {
    module_select(module);
    if (ModuleDescriptor* descriptor = module_describe()) gfree(descriptor);
}

} // namespace

CTavixImage::CTavixImage() {
    m_OnWorksheet = ZyProfile().GetInt("CTavixImage", "m_OnWorksheet", 0);
}

CTavixImage::~CTavixImage() = default;

bool CTavixImage::Create(int width, int height, int bpp) {
    TavixInfo info{};
    info.size = kTavixInfoSize;
    info.version = kTavixInfoVersion;
    info.width = width;
    info.height = height;
    info.bpp = bpp;
    info.bufferbpp = bpp;
    if (bpp == 8) {
        info.startcolour = 0;
        info.numcolours = 256;
        for (int i = 0; i < 256; ++i) {
            // Taken modulo 256 as 8-bit products, negative ones included.
            info.colours[i].blue = static_cast<uint8_t>((i - 80) * i);
            info.colours[i].green = static_cast<uint8_t>(2 * i);
            info.colours[i].red = static_cast<uint8_t>(3 * i);
            info.colours[i].alpha = 255;
        }
    }
    info.quality = 100;
    info.alphabits = info.redbits = info.greenbits = info.bluebits = 8;
    SetInformation(info);
    return true;
}

bool CTavixImage::CopyPixels(const CDIB& from) {
    if (!CDIB::CopyPixels(from)) return false;
    if (GetBitCount() <= 8) {
        CDIBColour table[kDIBColourTableSize];
        CDIB::GetColorTable(0, kDIBColourTableSize, table);
        TavixColour colours[256];
        static_assert(sizeof table == sizeof colours);
        memcpy(colours, table, sizeof colours);
        SetPalette(colours);
    }
    return true;
}

void CTavixImage::InstallRecord(const TavixInfo& info) {
    int32_t size = std::max(info.size, kTavixInfoSize);
    if (size > kTavixMaxInfoSize)
        throw CInvalidArgException("image record of " + std::to_string(size) + " bytes");
    auto words = static_cast<size_t>((size + 3) / 4);
    std::unique_ptr<uint32_t[]> copy(new (std::nothrow) uint32_t[words]);
    if (!copy) throw CMemoryException();
    copy[words - 1] = 0;
    memcpy(copy.get(), &info, static_cast<size_t>(size));
    m_Info = std::move(copy);
    m_InfoSize = size;
    reinterpret_cast<TavixInfo*>(m_Info.get())->size = size;
}

void CTavixImage::SetInformation(const TavixInfo& info) {
    if (info.width < 0 || info.height < 0 || info.bufferbpp < 1 || info.bufferbpp > 32)
        throw CInvalidArgException("image record of " + std::to_string(info.width) + " x " +
                                   std::to_string(info.height) + " at " +
                                   std::to_string(info.bufferbpp) + " bits");
    // Copy first: `info` may be this image's own record.
    std::unique_ptr<uint32_t[]> old = std::move(m_Info);
    const int32_t oldSize = m_InfoSize;
    try {
        InstallRecord(info);
    } catch (...) {
        m_Info = std::move(old);
        m_InfoSize = oldSize;
        throw;
    }
    const TavixInfo& record = *GetInfo();
    if (!CDIB::Create(record.width, record.height, record.bufferbpp)) throw CMemoryException();
    if (record.bufferbpp == 8) {
        CDIBColour table[kDIBColourTableSize];
        memcpy(table, record.colours, sizeof table);
        SetColorTable(0, kDIBColourTableSize, table);
    }
    ClearPixels();
}

void CTavixImage::LoadPixelRows(const ImageEntry& entry) {
    if (!entry.info || !entry.pixels || !IsValid()) return;
    const int rows = std::min(entry.info->height, GetHeight());
    const size_t length = static_cast<size_t>(std::min<int64_t>(GetPitch(), entry.rowbytes));
    const auto* base = static_cast<const uint8_t*>(entry.pixels);
    for (int y = 0; y < rows; ++y)
        memcpy(GetRow(y), base + static_cast<ptrdiff_t>(y) * entry.rowbytes, length);
}

const TavixInfo* CTavixImage::GetInfo() const {
    return m_Info ? reinterpret_cast<const TavixInfo*>(m_Info.get()) : &zeroRecord();
}

TavixInfo* CTavixImage::GetInfoForWrite() {
    if (!m_Info) return nullptr;
    m_Modified = 1;
    return reinterpret_cast<TavixInfo*>(m_Info.get());
}

bool CTavixImage::TakeModifiedMark() {
    bool mark = m_Modified != 0;
    m_Modified = 0;
    return mark;
}

CSize CTavixImage::GetSize() const {
    return {GetInfo()->width, GetInfo()->height};
}

int CTavixImage::GetBpp() const {
    return GetInfo()->bpp;
}

CPoint CTavixImage::GetCenterPoint() const {
    return {GetInfo()->centerx, GetInfo()->centery};
}

CPoint CTavixImage::GetDefaultPoint() const {
    return {GetInfo()->defaultx, GetInfo()->defaulty};
}

void CTavixImage::SetDefaultPoint(CPoint point) {
    if (TavixInfo* info = GetInfoForWrite()) {
        info->defaultx = point.x;
        info->defaulty = point.y;
    }
}

CRect CTavixImage::GetPlacementRect() const {
    const TavixInfo& info = *GetInfo();
    return {info.defaultx, info.defaulty, info.defaultx + info.width, info.defaulty + info.height};
}

int CTavixImage::GetHotSpotCount() const {
    return GetInfo()->numhotspots;
}

CPoint CTavixImage::GetHotSpot(int index) const {
    if (index < 0 || index >= kTavixMaxHotSpots) return {};
    const TavixHotSpot& spot = GetInfo()->hotspots[index];
    return {spot.x, spot.y};
}

std::string CTavixImage::GetName() const {
    const char* name = GetInfo()->framename;
    return std::string(name, strnlen(name, sizeof GetInfo()->framename));
}

void CTavixImage::SetName(const std::string& name) {
    if (TavixInfo* info = GetInfoForWrite())
        snprintf(info->framename, sizeof info->framename, "%s", name.c_str());
}

void CTavixImage::GetPalette(TavixColour out[256]) const {
    memcpy(out, GetInfo()->colours, sizeof GetInfo()->colours);
}

void CTavixImage::SetPaletteEntry(int index, const TavixColour& colour) {
    TavixInfo* info = GetInfoForWrite();
    if (!info || index < 0 || index > 255) return;
    info->colours[index] = colour;
    CDIBColour entry;
    memcpy(&entry, &colour, sizeof entry);
    SetColorTable(index, 1, &entry);
}

void CTavixImage::SetPalette(const TavixColour* colours) {
    for (int i = 0; i < GetColorCount(); ++i)
        SetPaletteEntry(i, colours[i]);
}

uint32_t CTavixImage::GetPixelValue(int x, int y) const {
    const uint8_t* at = GetPixelAddress(x, y);
    if (!at) return 0;
    if (GetBitCount() <= 8) return argbOf(GetInfo()->colours[*at]);
    uint32_t word;
    memcpy(&word, at, sizeof word);
    return word;
}

int CTavixImage::GetIndex(int x, int y) const {
    const uint8_t* at = GetPixelAddress(x, y);
    return at && GetBitCount() <= 8 ? *at : 0;
}

std::string CTavixImage::GetHotSpotsText() const {
    const TavixInfo& info = *GetInfo();
    std::string text;
    const int count = std::min(info.numhotspots, kTavixMaxHotSpots);
    char pair[40];
    for (int i = 0; i < count; ++i) {
        snprintf(pair, sizeof pair, i == 0 ? "%d,%d" : " ; %d,%d", info.hotspots[i].x,
                 info.hotspots[i].y);
        text += pair;
    }
    return text;
}

void CTavixImage::SetHotSpotsFromText(const std::string& text) {
    TavixInfo* info = GetInfoForWrite();
    if (!info) return;
    char buffer[10000];
    snprintf(buffer, sizeof buffer, "%s", text.c_str());
    // The scan's outputs carry over from pair to pair: a segment that holds
    // no number stores the previous pair again. Before the first pair they
    // are (0, 0).
    int x = 0, y = 0;
    int count = 0;
    const char* at = buffer;
    while (count < kTavixMaxHotSpots) {
        if (sscanf(at, "%d,%d", &x, &y) == EOF) break;
        info->hotspots[count++] = {x, y};
        at = strchr(at, ';');
        if (!at) break;
        ++at;
    }
    info->numhotspots = count;
}

std::unique_ptr<CTavixImage> CTavixImage::RunModule(int module, const ModuleValue* values,
                                                    int count, const CTavixImage* second) const {
    if (!moduleIndexOk(module)) return nullptr;
    selectModule(module);
    const ImageEntry inputs[2] = {GetEntry(), second ? second->GetEntry() : ImageEntry{}};
    InstanceCloser run;
    if (!module_open(&run.instance, second ? 2 : 1, inputs, count, values)) return nullptr;
    GPtr<TavixInfo> result(module_query(run.instance, 0));
    if (!result) return nullptr;
    auto image = std::make_unique<CTavixImage>();
    image->SetInformation(*result);
    result.reset();
    TavixInfo* record = image->GetInfoForWrite();
    bool made = module_process(run.instance, record, image->GetBits(), image->GetPitch()) != 0;
    image->TakeModifiedMark();
    if (!run.close() || !made) return nullptr;
    image->m_OnWorksheet = m_OnWorksheet;
    return image;
}

std::unique_ptr<CTavixImage> CTavixImage::Duplicate() const {
    return RunModule(module_find("fnil"), nullptr, 0);
}

bool CTavixImage::RunModuleInPlace(int module, const ModuleValue* values, int count) {
    if (!moduleIndexOk(module) || !m_Info) return false;
    selectModule(module);
    TavixInfo* record = GetInfoForWrite();
    ImageEntry entry{record, GetBits(), GetPitch()};
    InstanceCloser run;
    if (!module_open(&run.instance, 1, &entry, count, values)) return false;
    bool done = module_process(run.instance, record, GetBits(), GetPitch()) != 0;
    return run.close() && done;
}

ImageEntry CTavixImage::GetEntry() const {
    return {GetInfo(), GetBits(), GetPitch()};
}

std::unique_ptr<CTavixImage> CTavixImage::FromFrame(const TavixFrame& frame) {
    if (!frame.info) return nullptr;
    auto image = std::make_unique<CTavixImage>();
    image->SetInformation(*frame.info);
    image->LoadPixelRows({frame.info.get(), frame.pixels.data(), frame.pitch});
    return image;
}

TavixFrame CTavixImage::ToFrame() const {
    TavixFrame frame;
    frame.info = CopyTavixInfo(*GetInfo());
    if (!frame.info) throw CMemoryException();
    frame.pitch = GetPitch();
    const uint8_t* bits = GetBits();
    if (bits) frame.pixels.assign(bits, bits + GetImageSize());
    return frame;
}
