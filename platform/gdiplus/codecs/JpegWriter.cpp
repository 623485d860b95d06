#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/Jpeg.h"

#include <array>

namespace kx::gdiplus::codecs {

namespace {

constexpr int kQuality = 75;

// Whether no pixel has another colour than a shade of grey.
bool IsGray(const PixelView& view) noexcept
{
    DWORD off = 0;
    for (int y = 0; y < view.height; ++y) {
        const DWORD* const row = view.Row(y);
        for (int x = 0; x < view.width; ++x)
            off |= (row[x] ^ row[x] >> 8) & 0xFFFF;
    }
    return off == 0;
}

// Where the library's bytes go: by blocks to the end of a file. (The library's own for memory keeps a block
// from whoever is to free it when it runs out of memory.)
class JpegFile : public jpeg_destination_mgr
{
public:
    explicit JpegFile(Bytes& file) noexcept : m_file(file)
    {
        init_destination = [](j_compress_ptr jpeg) { Of(jpeg).Begin(); };
        empty_output_buffer = [](j_compress_ptr jpeg) -> boolean {
            Of(jpeg).Put(jpeg, BLOCK);
            return TRUE;
        };
        term_destination = [](j_compress_ptr jpeg) { Of(jpeg).Put(jpeg, BLOCK - Of(jpeg).free_in_buffer); };
    }

private:
    static constexpr std::size_t BLOCK = std::size_t{1} << 16;

    static JpegFile& Of(j_compress_ptr jpeg) { return *static_cast<JpegFile*>(jpeg->dest); }
    void Begin() noexcept
    {
        next_output_byte = m_block.data();
        free_in_buffer = m_block.size();
    }
    void Put(j_compress_ptr jpeg, std::size_t nBytes)
    {
        if (!Append(m_file, m_block.data(), nBytes)) ERREXIT1(jpeg, JERR_OUT_OF_MEMORY, 0);
        Begin();
    }

    Bytes& m_file;
    std::array<JOCTET, BLOCK> m_block;
};

class JpegEncoder : private JpegErrors
{
public:
    JpegEncoder(const PixelView& view, Bytes& file) : m_view(view), m_rows(view), m_file(file)
    {
        m_jpeg.err = this;
    }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;
    ~JpegEncoder() { jpeg_destroy_compress(&m_jpeg); }

    Gdiplus::Status Run()
    {
        return Guarded([this] { Write(); }) ? Gdiplus::Ok : Failure();
    }

private:
    void Write()
    {
        jpeg_create_compress(&m_jpeg);
        m_jpeg.dest = &m_file;
        m_jpeg.image_width = static_cast<JDIMENSION>(m_view.width);
        m_jpeg.image_height = static_cast<JDIMENSION>(m_view.height);
        m_jpeg.input_components = 4;
        m_jpeg.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&m_jpeg); // colours at half the resolution
        if (IsGray(m_view)) jpeg_set_colorspace(&m_jpeg, JCS_GRAYSCALE);
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
    JpegFile m_file;
    jpeg_compress_struct m_jpeg{};
};

} // namespace

Gdiplus::Status WriteJpeg(const PixelView& view, Bytes& file)
{
    NeedRoom(); // for what the library has in each thread
    return JpegEncoder(view, file).Run();
}

} // namespace kx::gdiplus::codecs
