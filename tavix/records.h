#pragma once
// The records the program and the codec library exchange. Their byte layout
// is fixed (little-endian, 32-bit integers unless noted); every offset is
// checked below so a careless edit cannot change the wire format.

#include <cstddef>
#include <cstdint>

struct TavixColour {
    uint8_t blue, green, red, alpha;
};

struct TavixHotSpot {
    int32_t x, y;
};

constexpr int32_t kTavixInfoSize = 10864;
constexpr int32_t kTavixInfoVersion = 200;
constexpr int kTavixMaxHotSpots = 1024;

// Bits of TavixInfo::attributes.
enum : uint32_t {
    kAttrMipLevel = 0x200,
    kAttrRotated = 0x800,
    kAttrTransposed = 0x1000,
    kAttrDot3 = 0x2000,
    kAttrEmbm = 0x4000,
};

// One frame's description. A driver may return a longer record (its `size`
// says so) carrying a tail of data only that driver understands; every copy
// is by `size`, so the tail travels with the image.
struct TavixInfo {
    uint32_t formatid; // top three bytes: the format; lowest byte: a variant
    int32_t size;
    int32_t version;
    int32_t frame;
    int32_t width;
    int32_t height;
    int32_t bufferbpp; // 8 or less: one index per byte; otherwise 32-bit ARGB
    int32_t bpp;       // nominal depth in the file
    int32_t startcolour;
    int32_t numcolours;
    TavixColour colours[256];
    int32_t subtype;
    int32_t packed;
    int32_t quality;
    int32_t framesize;
    int32_t alphabits;
    int32_t redbits;
    int32_t greenbits;
    int32_t bluebits;
    int32_t centerx;
    int32_t centery;
    int32_t defaultx;
    int32_t defaulty;
    int32_t numhotspots;
    char framename[512];
    char comment[1024];
    TavixHotSpot hotspots[kTavixMaxHotSpots];
    float dpi;
    float fps;
    uint32_t attributes; // kAttr* bits
    uint32_t reserved[2];
};

static_assert(offsetof(TavixInfo, formatid) == 0);
static_assert(offsetof(TavixInfo, size) == 4);
static_assert(offsetof(TavixInfo, version) == 8);
static_assert(offsetof(TavixInfo, frame) == 12);
static_assert(offsetof(TavixInfo, width) == 16);
static_assert(offsetof(TavixInfo, height) == 20);
static_assert(offsetof(TavixInfo, bufferbpp) == 24);
static_assert(offsetof(TavixInfo, bpp) == 28);
static_assert(offsetof(TavixInfo, startcolour) == 32);
static_assert(offsetof(TavixInfo, numcolours) == 36);
static_assert(offsetof(TavixInfo, colours) == 40);
static_assert(offsetof(TavixInfo, subtype) == 1064);
static_assert(offsetof(TavixInfo, packed) == 1068);
static_assert(offsetof(TavixInfo, quality) == 1072);
static_assert(offsetof(TavixInfo, framesize) == 1076);
static_assert(offsetof(TavixInfo, alphabits) == 1080);
static_assert(offsetof(TavixInfo, redbits) == 1084);
static_assert(offsetof(TavixInfo, greenbits) == 1088);
static_assert(offsetof(TavixInfo, bluebits) == 1092);
static_assert(offsetof(TavixInfo, centerx) == 1096);
static_assert(offsetof(TavixInfo, centery) == 1100);
static_assert(offsetof(TavixInfo, defaultx) == 1104);
static_assert(offsetof(TavixInfo, defaulty) == 1108);
static_assert(offsetof(TavixInfo, numhotspots) == 1112);
static_assert(offsetof(TavixInfo, framename) == 1116);
static_assert(offsetof(TavixInfo, comment) == 1628);
static_assert(offsetof(TavixInfo, hotspots) == 2652);
static_assert(offsetof(TavixInfo, dpi) == 10844);
static_assert(offsetof(TavixInfo, fps) == 10848);
static_assert(offsetof(TavixInfo, attributes) == 10852);
static_assert(sizeof(TavixInfo) == kTavixInfoSize);

// Capability flags of TavixAbout::caps.
enum : uint32_t {
    kCapRead = 0x1, // the library's own: the driver can read
    kCapWrite = 0x2,
    kCapPacked = 0x10,
    kCapPackedAlt = 0x20,
    kCapPalette = 0x80,
    kCapTrueColour = 0x200,
    kCapMultiImage = 0x400,
    kCapStartColour = 0x40000,
    kCapAttributeBits = 0x100000,
};

constexpr int kTavixMaxExtensions = 8;
constexpr int kTavixAboutSize = 352;

// A driver's description. The program reads formatid, caps, the limits,
// extensions, author, version and description; the rest is the library's.
struct TavixAbout {
    uint32_t formatid;
    int32_t size;        // the library's: byte size of this record
    int32_t driverindex; // the library's: index in the driver table
    uint32_t caps;
    int32_t colourlimit; // 0 = none
    int32_t namelimit;   // 0 = none
    char shortname[16];  // the library's: the name `find` matches
    char reserved[20];
    char extensions[kTavixMaxExtensions][8]; // ".tga"; the list ends at the first empty one
    char author[32];
    char version[32];
    char description[32];
    char notes[128]; // the library's: longer remarks (e.g. "experimental")
    char reserved2[4];
};

static_assert(offsetof(TavixAbout, formatid) == 0);
static_assert(offsetof(TavixAbout, caps) == 12);
static_assert(offsetof(TavixAbout, colourlimit) == 16);
static_assert(offsetof(TavixAbout, namelimit) == 20);
static_assert(offsetof(TavixAbout, extensions) == 60);
static_assert(offsetof(TavixAbout, author) == 124);
static_assert(offsetof(TavixAbout, version) == 156);
static_assert(offsetof(TavixAbout, description) == 188);
static_assert(sizeof(TavixAbout) == kTavixAboutSize);

// The program's stream and memory callbacks, in slot order. A stream is a
// handle from slot 0 or 1; 0 means failure.
struct TavixCallbacks {
    intptr_t (*openread)(const char* path);
    intptr_t (*openwrite)(const char* path);
    int (*close)(intptr_t stream);
    int32_t (*read)(intptr_t stream, void* buffer, int32_t count);
    int32_t (*write)(intptr_t stream, const void* buffer, int32_t count);
    int (*seek)(intptr_t stream, uint32_t low, int32_t high);
    int64_t (*size)(intptr_t stream);
    int64_t (*tell)(intptr_t stream);
    void* (*alloc)(int32_t size);
    int (*free)(void* block);
};

static_assert(sizeof(TavixCallbacks) == 10 * sizeof(void*));
