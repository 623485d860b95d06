#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/module/Door.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <png.h>
#include <span>
#include <utility>

namespace kx::gdiplus::codecs {

namespace {

// Errors of the PNG library leave by a jump over the frames in between, none of which may need a destructor.
// Nothing is written anywhere.
[[noreturn]] void OnPngError(png_structp png, png_const_charp pszReason)
{
    gdi::NoteRefusal(pszReason);
    png_longjmp(png, 1);
}

void OnPngWarning(png_structp, png_const_charp)
{
}

constexpr int kMaxDeflate = 1032; // bytes that one byte of the file can stand for
constexpr std::size_t kReadAtOnce = 64 << 10;
constexpr png_alloc_size_t kMaxChunk = 1 << 20; // of those that are kept, none of which is as long

std::size_t BigEndian(FileBytes bytes) noexcept
{
    return std::size_t{bytes[0]} << 24 | std::size_t{bytes[1]} << 16 | std::size_t{bytes[2]} << 8 | bytes[3];
}

// Opaque pixels of bytes red, green, blue.
void Expand(const std::uint8_t* from, std::span<DWORD> row) noexcept
{
    for (DWORD& pixel : row) {
        pixel = 0xFF000000 | DWORD{from[0]} << 16 | DWORD{from[1]} << 8 | from[2];
        from += 3;
    }
}

class Decoder
{
public:
    Decoder(FileBytes file, int nMaxSide, bool* pbCut) noexcept
        : m_rest(file),
          m_pbCut(pbCut),
          m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnPngError, OnPngWarning)),
          m_info(m_png ? png_create_info_struct(m_png) : nullptr),
          m_nMaxSide(static_cast<png_uint_32>(nMaxSide))
    {
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    ~Decoder() { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    // For a picture that was read.
    bool HasAlpha() const noexcept { return m_bAlpha; }
    std::optional<gdi::Surface> Run()
    {
        if (!m_info || !Guarded(&Decoder::ReadHeader)) return std::nullopt;
        m_surface = gdi::Surface::Make(static_cast<int>(png_get_image_width(m_png, m_info)),
                                       static_cast<int>(png_get_image_height(m_png, m_info)));
        if (!m_surface) return std::nullopt;
        const bool bRead = Guarded(&Decoder::ReadPixels);
        if (!bRead && !(m_pbCut != nullptr && m_bEnded && m_nRows > 0)) return std::nullopt;
        if (m_pbCut) *m_pbCut = !m_bAllPixels;
        return std::move(m_surface);
    }

private:
    bool Guarded(void (Decoder::*step)())
    {
        if (setjmp(png_jmpbuf(m_png)) != 0) return false;
        (this->*step)();
        return true;
    }

    static Decoder& Of(png_structp png) noexcept { return *static_cast<Decoder*>(png_get_io_ptr(png)); }

    static void Read(png_structp png, png_bytep target, png_size_t size)
    {
        Decoder& self = Of(png);
        FileBytes& rest = self.m_rest;
        self.m_bEnded = size > rest.size();
        if (self.m_bEnded) png_error(png, "cut");
        std::memcpy(target, rest.data(), size);
        rest = rest.subspan(size);
        if (self.m_pbCut != nullptr && size == 8) ShortenIfCut(target, rest.size());
    }

    // A chunk of pixels that goes past the end of the file is made as long as what is there of it.
    static void ShortenIfCut(std::uint8_t* chunk, std::size_t nThere) noexcept
    {
        if (std::memcmp(chunk + 4, "IDAT", 4) != 0 || BigEndian({chunk, 4}) <= nThere) return;
        for (int i = 0; i < 4; ++i)
            chunk[i] = static_cast<std::uint8_t>(nThere >> 8 * (3 - i));
    }

    void ReadHeader()
    {
        png_set_read_fn(m_png, this, Read);
        png_set_user_limits(m_png, m_nMaxSide, m_nMaxSide);
        png_set_chunk_malloc_max(m_png, kMaxChunk);
        png_set_chunk_cache_max(m_png, 1);
        png_set_compression_buffer_size(m_png, kReadAtOnce);
        png_set_option(m_png, PNG_IGNORE_ADLER32, PNG_OPTION_ON); // their chunks have checksums besides
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(m_png, m_info);
        const int nType = png_get_color_type(m_png, m_info);
        m_bAlpha = (nType & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;

        png_set_expand(m_png);
        png_set_scale_16(m_png);
        png_set_gray_to_rgb(m_png);
        m_nPasses = png_set_interlace_handling(m_png);
        // Plain colours are expanded faster here, but passes have to find what those before them left.
        m_bTriplets = m_nPasses == 1 && nType == PNG_COLOR_TYPE_RGB && !m_bAlpha;
        if (m_bTriplets) {
            png_set_read_user_transform_fn(m_png, ExpandRow);
        } else {
            png_set_bgr(m_png);
            png_set_add_alpha(m_png, 0xFF, PNG_FILLER_AFTER);
        }
        png_read_update_info(m_png, m_info);
        const std::size_t nPixel = m_bTriplets ? 3 : sizeof(DWORD);
        if (png_get_rowbytes(m_png, m_info) != png_get_image_width(m_png, m_info) * nPixel)
            png_error(m_png, "other pixels than asked for");
    }

    // Called with each row in the library's own buffer, out of which it is expanded.
    static void ExpandRow(png_structp png, png_row_infop, png_bytep from)
    {
        Decoder& self = Of(png);
        const auto nWidth = static_cast<std::size_t>(self.m_surface->Width());
        Expand(from, {self.m_surface->Row(static_cast<int>(png_get_current_row_number(png))), nWidth});
    }

    void ReadPixels()
    {
        for (int pass = 0; pass < m_nPasses; ++pass)
            for (int y = 0; y < m_surface->Height(); ++y) {
                png_read_row(m_png, m_bTriplets ? nullptr : RowBytes(y), nullptr);
                ++m_nRows;
            }
        m_bAllPixels = true;
        png_read_end(m_png, nullptr);
    }

    png_bytep RowBytes(int y) noexcept { return reinterpret_cast<png_bytep>(m_surface->Row(y)); }

    FileBytes m_rest;
    bool* const m_pbCut;
    png_structp m_png;
    png_infop m_info;
    const png_uint_32 m_nMaxSide;
    int m_nPasses = 1;
    bool m_bAlpha = false;
    bool m_bTriplets = false; // rows are read as bytes red, green, blue, and by ExpandRow
    std::optional<gdi::Surface> m_surface;
    std::int64_t m_nRows = 0; // read, those of each pass
    bool m_bAllPixels = false;
    bool m_bEnded = false; // the file did before what was to be read of it
};

Gdiplus::PixelFormat FormatOf(const gdi::PngHeader& header, int nType, bool bAlpha) noexcept
{
    if (bAlpha) return Gdiplus::PixelFormat32bppARGB;
    if (nType != PNG_COLOR_TYPE_GRAY && !(nType & PNG_COLOR_MASK_PALETTE))
        return Gdiplus::PixelFormat24bppRGB;
    return FormatOfDepth(std::min(header.nDepth, 8));
}

} // namespace

std::optional<gdi::Surface> ReadPngPixels(FileBytes file, int nMaxSide, bool* pbCut)
{
    return Decoder(file, nMaxSide, pbCut).Run();
}

Gdiplus::Status ReadPng(const File& file, std::optional<Picture>& picture)
{
    const auto header = gdi::ParsePngHeader(*file);
    if (!header) return Gdiplus::GenericError;
    const Gdiplus::Status status = CheckSize(header->nWidth, header->nHeight);
    if (status != Gdiplus::Ok) return status;
    const std::int64_t nBits = std::int64_t{header->nWidth} * header->nHeight * header->nDepth;
    if (IsAbsurd(nBits / 8, file->size(), kMaxDeflate)) return Gdiplus::GenericError;

    bool bCut = false;
    Decoder decoder(*file, Gdiplus::MAX_IMAGE_SIDE, &bCut);
    auto surface = decoder.Run();
    if (!surface) return Gdiplus::GenericError;
    picture = Picture{std::move(*surface), decoder.HasAlpha() || bCut ? Alpha::Straight : Alpha::Opaque,
                      FormatOf(*header, (*file)[25], decoder.HasAlpha())};
    return Gdiplus::Ok;
}

namespace {

class PngEncoder
{
public:
    PngEncoder(const PixelView& view, Bytes& file)
        : m_view(view),
          m_file(file),
          m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnPngError, OnPngWarning)),
          m_info(m_png ? png_create_info_struct(m_png) : nullptr)
    {
    }
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;
    ~PngEncoder() { png_destroy_write_struct(&m_png, &m_info); }

    // The one reason for a failure is a lack of memory.
    Gdiplus::Status Run()
    {
        if (!m_info || setjmp(png_jmpbuf(m_png)) != 0) return Gdiplus::OutOfMemory;
        WriteAll();
        return Gdiplus::Ok;
    }

private:
    static void Write(png_structp png, png_bytep bytes, png_size_t nBytes)
    {
        if (!Append(static_cast<PngEncoder*>(png_get_io_ptr(png))->m_file, bytes, nBytes))
            png_error(png, "memory");
    }

    void WriteAll()
    {
        const bool bAlpha = m_view.alpha != Alpha::Opaque;
        png_set_write_fn(m_png, this, Write, nullptr);
        png_set_IHDR(m_png, m_info, static_cast<png_uint_32>(m_view.width),
                     static_cast<png_uint_32>(m_view.height), 8,
                     bAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(m_png, m_info);
        if (!bAlpha) png_set_filler(m_png, 0, PNG_FILLER_AFTER);
        png_set_bgr(m_png);
        for (int y = 0; y < m_view.height; ++y)
            png_write_row(m_png, reinterpret_cast<png_const_bytep>(m_view.Row(y)));
        png_write_end(m_png, nullptr);
    }

    const PixelView m_view;
    Bytes& m_file;
    png_structp m_png;
    png_infop m_info;
};

} // namespace

Gdiplus::Status WritePng(const PixelView& view, Bytes& file)
{
    return PngEncoder(view, file).Run();
}

namespace {

constexpr Functions kFunctions{{ReadPngPixels}, ReadPng,  ReadJpeg,  ReadGif, ReadTiff,
                               WriteJpeg,       WriteGif, WriteTiff, WritePng};

} // namespace

} // namespace kx::gdiplus::codecs

KX_MODULE_ENTRY(pictures, kx::gdiplus::codecs::kFunctions)
