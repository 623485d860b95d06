#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/PngErrors.h"

namespace kx::gdiplus::codecs {

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

} // namespace kx::gdiplus::codecs
