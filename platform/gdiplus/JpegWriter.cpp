#include "platform/Cpu.h"
#include "platform/gdiplus/Blend.h"
#include "platform/gdiplus/Encode.h"
#include "platform/gdiplus/EncodedRows.h"
#include "platform/gdiplus/Jpeg.h"

#include <cstdlib>

namespace kx::gdiplus {

namespace {

constexpr int kQuality = 75;

struct Look
{
    bool bGray = true; // no pixel has another colour
    bool bOpaque = true;
};

[[gnu::always_inline]] inline Look LookAt(const PixelView& view) noexcept
{
    DWORD off = 0;
    DWORD all = ALPHA_BITS;
    for (int y = 0; y < view.height; ++y) {
        const DWORD* const row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            off |= (row[x] ^ row[x] >> 8) & 0xFFFF;
            all &= row[x];
        }
    }
    return {off == 0, view.alpha == Alpha::Opaque || (all & ALPHA_BITS) == ALPHA_BITS};
}

KX_AVX2 Look LookAvx2(const PixelView& view) noexcept
{
    return LookAt(view);
}

Look LookPlain(const PixelView& view) noexcept
{
    return LookAt(view);
}

PixelView WithAlphaOf(PixelView view, const Look& look) noexcept
{
    if (look.bOpaque) view.alpha = Alpha::Opaque;
    return view;
}

class JpegEncoder : private JpegErrors
{
public:
    JpegEncoder(const PixelView& view, const Look& look)
        : m_view(view), m_rows(WithAlphaOf(view, look)), m_bGray(look.bGray)
    {
        m_jpeg.err = this;
    }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;
    ~JpegEncoder()
    {
        jpeg_destroy_compress(&m_jpeg);
        std::free(m_pBytes);
    }

    Gdiplus::Status Run(Bytes& file)
    {
        if (!Guarded([this] { Write(); })) return Failure();
        file.assign(m_pBytes, m_pBytes + m_nBytes);
        return Gdiplus::Ok;
    }

private:
    void Write()
    {
        jpeg_create_compress(&m_jpeg);
        jpeg_mem_dest(&m_jpeg, &m_pBytes, &m_nBytes);
        m_jpeg.image_width = static_cast<JDIMENSION>(m_view.width);
        m_jpeg.image_height = static_cast<JDIMENSION>(m_view.height);
        m_jpeg.input_components = 4;
        m_jpeg.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&m_jpeg); // colours at half the resolution
        if (m_bGray) jpeg_set_colorspace(&m_jpeg, JCS_GRAYSCALE);
        jpeg_set_quality(&m_jpeg, kQuality, TRUE);
        jpeg_start_compress(&m_jpeg, TRUE);
        for (int y = 0; y < m_view.height; ++y) {
            // The library reads it alone.
            auto* row = reinterpret_cast<JSAMPLE*>(const_cast<DWORD*>(m_rows.Row(y)));
            jpeg_write_scanlines(&m_jpeg, &row, 1);
        }
        jpeg_finish_compress(&m_jpeg);
    }

    const PixelView m_view;
    RowsOverBlack m_rows;
    const bool m_bGray;
    jpeg_compress_struct m_jpeg{};
    unsigned char* m_pBytes = nullptr;
    unsigned long m_nBytes = 0;
};

} // namespace

Gdiplus::Status WriteJpeg(const PixelView& view, Bytes& file)
{
    return JpegEncoder(view, HasAvx2() ? LookAvx2(view) : LookPlain(view)).Run(file);
}

} // namespace kx::gdiplus
