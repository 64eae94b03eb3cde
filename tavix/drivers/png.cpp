// PNG through libpng.
//
// Reading: palette images (1, 2, 4 or 8-bit indices) come back as indexed
// frames whose palette carries the tRNS alphas; every other kind (grey,
// grey + alpha, RGB, RGBA, with or without a tRNS colour key, 16-bit
// channels scaled to 8, interlaced or not) comes back as 32-bit ARGB. No
// gamma or colour-profile correction is applied: the stored values are
// the pixels.
//
// Writing: indexed frames as 8-bit palette images (tRNS when the record has
// alpha bits and some entry is not opaque, trailing opaque entries trimmed);
// true colour as RGBA when the record has alpha bits and some pixel is not
// opaque, else RGB. Frame names, points and comments are not stored.
//
// libpng reports errors by longjmp. The functions that call setjmp hold no
// object with a destructor and run no C++ that can throw; everything that
// allocates through C++ happens in callbacks that catch their own failures.
// libpng's own memory comes from the host allocator, and the user limits
// and a decompression bound keep a hostile file from asking for much.

#include "tavix/core/ByteIO.h"
#include "tavix/core/Driver.h"

#include <png.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>

namespace tavix {
namespace {

constexpr uint32_t kPngId = 0x504E4700;
constexpr uint8_t kSignature[8] = {137, 80, 78, 71, 13, 10, 26, 10};
constexpr png_uint_32 kMaxSide = 1u << 24;
// Deflate cannot expand data by more than about 1032 to 1.
constexpr uint64_t kMaxInflation = 1032;

// --- libpng plumbing (no C++ exceptions may cross these) --------------------

// libpng's error and memory context: the message of the error that ended a
// run, and the largest single block libpng may have.
struct PngContext {
    char text[200] = "";
    size_t allocationLimit = 0x7FFFFF00u;
};

// libpng's own limits on ancillary chunks do not stop every large request,
// so no block may exceed what the image in hand can need.
png_voidp hostMalloc(png_structp png, png_alloc_size_t size) {
    auto* context = static_cast<const PngContext*>(png_get_mem_ptr(png));
    if (size > 0x7FFFFF00u || (context && size > context->allocationLimit)) return nullptr;
    return host().alloc(static_cast<int32_t>(std::max<png_alloc_size_t>(size, 1)));
}

void hostFree(png_structp, png_voidp block) {
    if (block) host().free(block);
}

[[noreturn]] void onError(png_structp png, png_const_charp text) {
    auto* message = static_cast<PngContext*>(png_get_error_ptr(png));
    copyText(message->text, sizeof message->text, text);
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

// --- reading ---------------------------------------------------------------

struct PngReadJob {
    // The file, read in blocks through `block` as libpng asks for it.
    Source* source = nullptr;
    uint64_t pos = 0;
    Bytes block;
    uint64_t blockStart = 0;
    size_t blockSize = 0;
    PngContext message;
    // From the header.
    png_uint_32 width = 0, height = 0;
    int bitDepth = 0, colourType = 0, interlace = 0;
    int paletteSize = 0;
    png_color palette[256] = {};
    int transSize = 0;
    png_byte trans[256] = {};
    bool colourKey = false; // tRNS names one transparent grey or RGB value
    // Asked for once the header is known: row pointers for the decoded
    // rows (width bytes for palette images, else 4 bytes B, G, R, A per
    // pixel), or null with `message` set. No function: the header is all
    // that is wanted.
    png_bytep* (*prepare)(PngReadJob& job) = nullptr;
    void* owner = nullptr;
};

constexpr size_t kReadBlock = 256 << 10;

// Serves libpng's small reads from a block of the file; false at the end
// of the file or on a failed read.
bool takeFromSource(PngReadJob& job, uint8_t* to, size_t count) noexcept {
    try {
        while (count) {
            if (job.pos < job.blockStart || job.pos >= job.blockStart + job.blockSize) {
                uint64_t size = job.source->size();
                if (job.pos >= size) return false;
                if (job.block.size() < kReadBlock) job.block.resize(kReadBlock);
                job.blockStart = job.pos;
                job.blockSize = static_cast<size_t>(std::min<uint64_t>(kReadBlock, size - job.pos));
                job.source->read(job.pos, job.block.data(), job.blockSize);
            }
            size_t at = static_cast<size_t>(job.pos - job.blockStart);
            size_t n = std::min(count, job.blockSize - at);
            memcpy(to, job.block.data() + at, n);
            to += n;
            count -= n;
            job.pos += n;
        }
        return true;
    } catch (...) {
        job.blockSize = 0;
        return false;
    }
}

void readFromSource(png_structp png, png_bytep to, size_t count) {
    auto* job = static_cast<PngReadJob*>(png_get_io_ptr(png));
    if (!takeFromSource(*job, to, count)) png_error(png, "the file ends early");
}

void keepHeader(png_structp png, png_infop info, PngReadJob& job) {
    png_get_IHDR(png, info, &job.width, &job.height, &job.bitDepth, &job.colourType, &job.interlace,
                 nullptr, nullptr);
    png_colorp palette = nullptr;
    if (png_get_PLTE(png, info, &palette, &job.paletteSize) && palette) {
        job.paletteSize = std::clamp(job.paletteSize, 0, 256);
        memcpy(job.palette, palette, sizeof(png_color) * job.paletteSize);
    }
    png_bytep trans = nullptr;
    png_color_16p key = nullptr;
    if (png_get_tRNS(png, info, &trans, &job.transSize, &key)) {
        if (job.colourType == PNG_COLOR_TYPE_PALETTE && trans) {
            job.transSize = std::clamp(job.transSize, 0, 256);
            memcpy(job.trans, trans, job.transSize);
        } else {
            job.transSize = 0;
            job.colourKey = true;
        }
    }
}

void chooseTransforms(png_structp png, const PngReadJob& job) {
    if (job.colourType == PNG_COLOR_TYPE_PALETTE) {
        png_set_packing(png);
    } else {
        if (job.bitDepth == 16) png_set_scale_16(png);
        if (job.colourType == PNG_COLOR_TYPE_GRAY && job.bitDepth < 8)
            png_set_expand_gray_1_2_4_to_8(png);
        if (job.colourKey) png_set_tRNS_to_alpha(png);
        if (!(job.colourType & PNG_COLOR_MASK_COLOR)) png_set_gray_to_rgb(png);
        if (!(job.colourType & PNG_COLOR_MASK_ALPHA) && !job.colourKey)
            png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
        png_set_bgr(png);
    }
    png_set_interlace_handling(png);
}

// The only function that calls setjmp on the read side.
bool runRead(PngReadJob& job) {
    png_structp png = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, &job.message, onError,
                                               onWarning, &job.message, hostMalloc, hostFree);
    if (!png) {
        copyText(job.message.text, sizeof job.message.text, "out of memory");
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        copyText(job.message.text, sizeof job.message.text, "out of memory");
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, nullptr);
        return false;
    }
    png_set_read_fn(png, &job, readFromSource);
    png_set_user_limits(png, kMaxSide, kMaxSide);
    png_set_chunk_cache_max(png, 64);
    png_set_chunk_malloc_max(png, 1 << 22);
    png_read_info(png, info);
    keepHeader(png, info, job);
    if (!job.prepare) {
        png_destroy_read_struct(&png, &info, nullptr);
        return true;
    }
    chooseTransforms(png, job);
    png_read_update_info(png, info);
    size_t expected = size_t{job.width} * (job.colourType == PNG_COLOR_TYPE_PALETTE ? 1 : 4);
    if (png_get_rowbytes(png, info) != expected)
        png_error(png, "unexpected row layout after conversion");
    png_bytep* rows = job.prepare(job);
    if (!rows) png_longjmp(png, 1);
    png_read_image(png, rows);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

// Opening reads the chunks up to the image data, no further; the pixels
// are inflated when the frame is decoded, straight into the caller's rows.
class PngReader : public FrameReader {
  public:
    explicit PngReader(HostPtr<Source>&& source) : m_source(std::move(source)) {
        m_fileSize = m_source->size();
        uint8_t head[33] = {};
        size_t got = static_cast<size_t>(std::min<uint64_t>(m_fileSize, sizeof head));
        m_source->read(0, head, got);
        if (got < 8 || memcmp(head, kSignature, 8) != 0) fail("not a PNG file");
        m_limit = allocationLimit(head, got);
        run(nullptr);
        if (m_job.colourType == PNG_COLOR_TYPE_PALETTE && m_job.paletteSize == 0)
            fail("the PNG palette image has no palette");
        checkedPixelCount(m_job.width, m_job.height);
    }

    int frameCount() const override { return 1; }

    void describe(int, TavixInfo& info, Bytes&) override {
        const PngReadJob& j = m_job;
        bool palette = j.colourType == PNG_COLOR_TYPE_PALETTE;
        int channels = palette ? 1 : channelsOf(j.colourType);
        info.formatid = kPngId;
        info.width = static_cast<int32_t>(j.width);
        info.height = static_cast<int32_t>(j.height);
        info.bufferbpp = palette ? 8 : 32;
        info.bpp = j.bitDepth * channels;
        info.numcolours = palette ? j.paletteSize : 0;
        if (palette) paletteInto(info.colours);
        info.subtype = j.colourType;
        info.packed = 1; // image data is always deflated
        info.framesize = static_cast<int32_t>(std::min<uint64_t>(m_fileSize, INT32_MAX));
        int colourBits = palette ? 8 : j.bitDepth;
        info.redbits = info.greenbits = info.bluebits = colourBits;
        if (palette)
            info.alphabits = j.transSize > 0 ? 8 : 0;
        else
            info.alphabits = (j.colourType & PNG_COLOR_MASK_ALPHA) ? j.bitDepth
                             : j.colourKey                         ? 1
                                                                   : 0;
    }

    void decode(int, Picture& out) override {
        bool palette = m_job.colourType == PNG_COLOR_TYPE_PALETTE;
        auto w = static_cast<int32_t>(m_job.width), h = static_cast<int32_t>(m_job.height);
        if (palette) {
            out.makeIndexed(w, h);
            paletteInto(out.palette);
            out.numcolours = m_job.paletteSize;
            decodeRows(out.indices.data(), w);
        } else {
            out.makeTrueColour(w, h);
            decodeRows(reinterpret_cast<uint8_t*>(out.argb.data()), static_cast<ptrdiff_t>(w) * 4);
        }
    }

    bool decodeInto(int, TavixInfo& info, uint8_t* pixels, ptrdiff_t pitch) override {
        bool palette = m_job.colourType == PNG_COLOR_TYPE_PALETTE;
        if (static_cast<uint32_t>(info.width) != m_job.width ||
            static_cast<uint32_t>(info.height) != m_job.height || (info.bufferbpp <= 8) != palette)
            return false;
        decodeRows(pixels, pitch);
        if (palette) paletteInto(info.colours);
        return true;
    }

  private:
    static int channelsOf(int colourType) {
        switch (colourType) {
        case PNG_COLOR_TYPE_GRAY:
            return 1;
        case PNG_COLOR_TYPE_GRAY_ALPHA:
            return 2;
        case PNG_COLOR_TYPE_RGB:
            return 3;
        default:
            return 4;
        }
    }

    void paletteInto(TavixColour* colours) const {
        const PngReadJob& j = m_job;
        Picture p;
        for (int i = 0; i < j.paletteSize; ++i) {
            uint32_t alpha = i < j.transSize ? j.trans[i] : 255;
            p.setPaletteArgb(
                i, packArgb(alpha, j.palette[i].red, j.palette[i].green, j.palette[i].blue));
        }
        memcpy(colours, p.palette, sizeof p.palette);
    }

    // One pass of libpng over the file: the header only when `prepare` is
    // null, else the whole image into the rows it hands out.
    void run(png_bytep* (*prepare)(PngReadJob&)) {
        Bytes block = std::move(m_job.block);
        m_job = PngReadJob{};
        m_job.block = std::move(block);
        m_job.source = m_source.get();
        m_job.message.allocationLimit = m_limit;
        m_job.prepare = prepare;
        m_job.owner = this;
        bool ok = runRead(m_job);
        m_rows.clear();
        m_job.block = Bytes(); // the block is only wanted while libpng reads
        if (!ok) fail("cannot read the PNG file: %s", m_job.message.text);
    }

    // The header's claims, checked before libpng allocates anything for
    // them; libpng validates the header itself afterwards. Rows of up to 8
    // bytes a pixel (twice, for filtering) are the largest legitimate blocks.
    size_t allocationLimit(const uint8_t* head, size_t size) {
        constexpr size_t kSmallBlocks = 8 << 20;
        if (size < 33 || memcmp(&head[12], "IHDR", 4) != 0) return kSmallBlocks;
        ByteReader in(head, size);
        in.seek(16);
        uint32_t width = in.u32be(), height = in.u32be();
        m_job.bitDepth = in.u8();
        m_job.colourType = in.u8();
        if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide) return kSmallBlocks;
        m_job.width = width;
        m_job.height = height;
        checkClaims();
        return std::max<size_t>(kSmallBlocks, size_t{width} * 16 + 65536);
    }

    void checkClaims() const {
        const PngReadJob& j = m_job;
        checkedPixelCount(j.width, j.height);
        int channels = j.colourType == PNG_COLOR_TYPE_PALETTE ? 1 : channelsOf(j.colourType);
        uint64_t rowBytes = (uint64_t{j.width} * std::min(j.bitDepth, 16) * channels + 7) / 8 + 1;
        if (rowBytes * j.height / kMaxInflation > m_fileSize)
            fail("the compressed data is too small for a %u x %u image", j.width, j.height);
    }

    // Runs inside libpng: must not throw.
    static png_bytep* prepareRows(PngReadJob& job) {
        auto* self = static_cast<PngReader*>(job.owner);
        try {
            self->pointRows();
            return self->m_rows.data();
        } catch (const FormatError& error) {
            copyText(job.message.text, sizeof job.message.text, error.message);
        } catch (...) {
            copyText(job.message.text, sizeof job.message.text, "out of memory");
        }
        return nullptr;
    }

    void pointRows() {
        const PngReadJob& j = m_job;
        checkClaims();
        if (j.width != m_expectWidth || j.height != m_expectHeight || j.colourType != m_expectType)
            fail("the PNG header changed while it was read");
        m_rows.resize(j.height);
        for (size_t y = 0; y < j.height; ++y)
            m_rows[y] = m_target + static_cast<ptrdiff_t>(y) * m_pitch;
    }

    void decodeRows(uint8_t* pixels, ptrdiff_t pitch) {
        m_target = pixels;
        m_pitch = pitch;
        m_expectWidth = m_job.width;
        m_expectHeight = m_job.height;
        m_expectType = m_job.colourType;
        int paletteSize = m_job.paletteSize;
        run(prepareRows);
        const PngReadJob& j = m_job;
        if (j.colourType != PNG_COLOR_TYPE_PALETTE) {
            if constexpr (std::endian::native != std::endian::little) {
                // The rows hold bytes B, G, R, A; make them words.
                for (size_t y = 0; y < j.height; ++y) {
                    auto* row =
                        reinterpret_cast<uint32_t*>(pixels + static_cast<ptrdiff_t>(y) * pitch);
                    for (size_t x = 0; x < j.width; ++x) {
                        const auto* p = reinterpret_cast<const uint8_t*>(&row[x]);
                        row[x] = packArgb(p[3], p[2], p[1], p[0]);
                    }
                }
            }
            return;
        }
        if (j.paletteSize != paletteSize) fail("the PNG palette changed while it was read");
        for (size_t y = 0; y < j.height; ++y) {
            const uint8_t* row = pixels + static_cast<ptrdiff_t>(y) * pitch;
            uint8_t largest = 0;
            for (size_t x = 0; x < j.width; ++x)
                largest = std::max(largest, row[x]);
            if (largest >= j.paletteSize)
                fail("PNG pixel index %u is beyond the %d palette entries", largest, j.paletteSize);
        }
    }

    HostPtr<Source> m_source;
    uint64_t m_fileSize = 0;
    size_t m_limit = 0;
    PngReadJob m_job;
    HostVector<png_bytep> m_rows;
    uint8_t* m_target = nullptr;
    ptrdiff_t m_pitch = 0;
    png_uint_32 m_expectWidth = 0, m_expectHeight = 0;
    int m_expectType = 0;
};

// --- writing ---------------------------------------------------------------

struct PngWriteJob {
    PngContext message;
    png_uint_32 width = 0, height = 0;
    int colourType = 0;
    png_color palette[256] = {};
    int paletteSize = 0;
    png_byte trans[256] = {};
    int transSize = 0;
    png_bytep* rows = nullptr;
    Bytes* out = nullptr;
};

void writeToMemory(png_structp png, png_bytep data, size_t count) {
    auto* job = static_cast<PngWriteJob*>(png_get_io_ptr(png));
    bool stored = true;
    try {
        job->out->insert(job->out->end(), data, data + count);
    } catch (...) {
        stored = false;
    }
    if (!stored) png_error(png, "out of memory");
}

void flushNothing(png_structp) {}

// The only function that calls setjmp on the write side.
bool runWrite(PngWriteJob& job) {
    png_structp png = png_create_write_struct_2(PNG_LIBPNG_VER_STRING, &job.message, onError,
                                                onWarning, &job.message, hostMalloc, hostFree);
    if (!png) {
        copyText(job.message.text, sizeof job.message.text, "out of memory");
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        copyText(job.message.text, sizeof job.message.text, "out of memory");
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &job, writeToMemory, flushNothing);
    png_set_IHDR(png, info, job.width, job.height, 8, job.colourType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (job.colourType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, job.palette, job.paletteSize);
        if (job.transSize > 0) png_set_tRNS(png, info, job.trans, job.transSize, nullptr);
    }
    png_write_info(png, info);
    png_write_image(png, job.rows);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

int paletteEntries(const Picture& picture) {
    int count = std::clamp(picture.numcolours, 0, 256);
    for (uint8_t index : picture.indices)
        count = std::max(count, index + 1);
    return std::max(count, 1);
}

class PngWriter : public FrameWriter {
  public:
    void add(const TavixInfo& info, std::span<const uint8_t>, Picture&& picture) override {
        if (m_has) fail("a PNG file holds one image");
        m_picture = std::move(picture);
        m_keepAlpha = info.alphabits > 0;
        m_has = true;
    }

    void finish(Bytes& file) override {
        if (!m_has) fail("no image was given to write");
        PngWriteJob job;
        job.width = static_cast<png_uint_32>(m_picture.width);
        job.height = static_cast<png_uint_32>(m_picture.height);
        job.out = &file;
        Bytes pixels;
        HostVector<png_bytep> rows(static_cast<size_t>(m_picture.height));
        size_t pitch;
        uint8_t* base;
        if (m_picture.indexed) {
            describePalette(job);
            pitch = static_cast<size_t>(m_picture.width);
            base = m_picture.indices.data();
        } else {
            bool alpha = pixelsHaveAlpha();
            job.colourType = alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
            pitch = static_cast<size_t>(m_picture.width) * (alpha ? 4 : 3);
            pixels = colourBytes(alpha);
            base = pixels.data();
        }
        for (size_t y = 0; y < rows.size(); ++y)
            rows[y] = base + y * pitch;
        job.rows = rows.data();
        if (!runWrite(job)) fail("cannot write the PNG file: %s", job.message.text);
    }

  private:
    void describePalette(PngWriteJob& job) const {
        job.colourType = PNG_COLOR_TYPE_PALETTE;
        job.paletteSize = paletteEntries(m_picture);
        for (int i = 0; i < job.paletteSize; ++i) {
            const TavixColour& c = m_picture.palette[i];
            job.palette[i] = {c.red, c.green, c.blue};
            job.trans[i] = m_keepAlpha ? c.alpha : 255;
            if (job.trans[i] != 255) job.transSize = i + 1;
        }
    }

    bool pixelsHaveAlpha() const {
        if (!m_keepAlpha) return false;
        for (uint32_t colour : m_picture.argb)
            if (colour >> 24 != 255) return true;
        return false;
    }

    Bytes colourBytes(bool alpha) const {
        Bytes bytes(m_picture.argb.size() * (alpha ? 4 : 3));
        uint8_t* to = bytes.data();
        for (uint32_t c : m_picture.argb) {
            *to++ = static_cast<uint8_t>(c >> 16);
            *to++ = static_cast<uint8_t>(c >> 8);
            *to++ = static_cast<uint8_t>(c);
            if (alpha) *to++ = static_cast<uint8_t>(c >> 24);
        }
        return bytes;
    }

    Picture m_picture;
    bool m_has = false;
    bool m_keepAlpha = false;
};

// --- the driver ------------------------------------------------------------

void about(TavixAbout& about) {
    fillAbout(about, kPngId, "png",
              kCapRead | kCapWrite | kCapPalette | kCapTrueColour | kCapPacked, {".png"},
              "Portable Network Graphics");
    about.colourlimit = 256;
    about.namelimit = 0; // names are not stored at all
    copyText(about.notes, sizeof about.notes,
             "Reads every PNG colour type and depth (16-bit reduced to 8); writes 8-bit palette, "
             "RGB or RGBA");
}

DetectScore detect(std::span<const uint8_t> head, const char* path) {
    if (head.size() >= 8 && memcmp(head.data(), kSignature, 8) == 0) return kByContent;
    return hasExtension(path, ".png") ? kByName : kNotMine;
}

HostPtr<FrameReader> openSource(HostPtr<Source>&& source) {
    return makeHost<PngReader>(std::move(source));
}

HostPtr<FrameReader> open(Bytes&& file) {
    return openSource(memorySource(std::move(file)));
}

HostPtr<FrameWriter> create(int frames) {
    if (frames != 1) {
        report("tavix: the PNG format holds one image per file; %d were to be written\n", frames);
        return nullptr;
    }
    return makeHost<PngWriter>();
}

} // namespace

extern const Driver kPngDriver = {"png", about, detect, open, create, openSource};

} // namespace tavix
