#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/Jpeg.h"

#include <algorithm>
#include <array>

namespace kx::gdiplus::codecs {

namespace {

using Gdiplus::Status;

constexpr int kMaxPerByte = 1024; // pixels, of which twice what a byte of Huffman codes can say
constexpr int kEndMark = 0xD9;
constexpr std::int64_t kFreeScanPixels = std::int64_t{100} << 20;
constexpr std::int64_t kScanPixelsPerByte = 4096;

// Ink, as the file has it or, in files with Adobe's mark, turned round, over white.
void InkToPixels(DWORD* row, int nWidth, bool bTurned) noexcept
{
    const DWORD turn = bTurned ? 0 : 0xFFFFFFFF;
    for (int x = 0; x < nWidth; ++x) {
        const DWORD light = row[x] ^ turn; // cyan, magenta, yellow, black from the low byte on
        const DWORD black = light >> 24;
        row[x] = ((light & 0xFF) * black + 127) / 255 << 16 | ((light >> 8 & 0xFF) * black + 127) / 255 << 8 |
                 ((light >> 16 & 0xFF) * black + 127) / 255;
    }
}

class JpegDecoder : private JpegErrors
{
public:
    explicit JpegDecoder(FileBytes file) noexcept : m_file(file)
    {
        m_jpeg.err = this;
        emit_message = OnMessage;
        m_progress.progress_monitor = OnProgress;
    }
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;
    ~JpegDecoder() { jpeg_destroy_decompress(&m_jpeg); }

    Status Run(std::optional<Picture>& picture)
    {
        if (!Guarded([this] { ReadHeader(); })) return Failure();
        const Status status = CheckSize(m_jpeg.image_width, m_jpeg.image_height);
        if (status != Gdiplus::Ok) return status;
        m_nPixels = std::int64_t{m_jpeg.image_width} * m_jpeg.image_height;
        if (IsAbsurd(m_nPixels, m_file.size(), kMaxPerByte)) return Gdiplus::GenericError;
        auto surface =
            gdi::Surface::Make(static_cast<int>(m_jpeg.image_width), static_cast<int>(m_jpeg.image_height));
        if (!surface) return Gdiplus::OutOfMemory;
        m_pSurface = &*surface;
        if (!Guarded([this] { ReadPixels(); })) return Failure();
        const auto format = m_jpeg.jpeg_color_space == JCS_GRAYSCALE ? Gdiplus::PixelFormat8bppIndexed
                                                                     : Gdiplus::PixelFormat24bppRGB;
        picture = Picture{std::move(*surface), Alpha::Opaque, format};
        return Gdiplus::Ok;
    }

private:
    static JpegDecoder& Of(j_common_ptr jpeg) noexcept { return static_cast<JpegDecoder&>(*jpeg->err); }

    // Warnings are silent. Behind the end of the data the library goes on with grey, which is no picture if
    // there isn't a single row of blocks.
    static void OnMessage(j_common_ptr jpeg, int nLevel)
    {
        if (nLevel >= 0) return;
        JpegDecoder& self = Of(jpeg);
        const bool bEnded = self.msg_code == JWRN_HIT_MARKER && self.m_jpeg.unread_marker == kEndMark;
        if (bEnded && self.m_jpeg.input_scan_number <= 1 && self.m_jpeg.input_iMCU_row == 0)
            self.error_exit(jpeg);
    }
    // Scans cost time by the picture's size, whatever their own is.
    static void OnProgress(j_common_ptr jpeg)
    {
        JpegDecoder& self = Of(jpeg);
        const std::int64_t nGranted =
            std::max(kFreeScanPixels, kScanPixelsPerByte * static_cast<std::int64_t>(self.m_file.size()));
        if (self.m_jpeg.input_scan_number * self.m_nPixels > nGranted) self.error_exit(jpeg);
    }

    void ReadHeader()
    {
        jpeg_create_decompress(&m_jpeg);
        m_jpeg.progress = &m_progress;
        jpeg_mem_src(&m_jpeg, m_file.data(), m_file.size());
        jpeg_read_header(&m_jpeg, TRUE);
    }
    void ReadPixels()
    {
        const bool bInk = m_jpeg.jpeg_color_space == JCS_CMYK || m_jpeg.jpeg_color_space == JCS_YCCK;
        m_jpeg.out_color_space = bInk ? JCS_CMYK : JCS_EXT_BGRX;
        jpeg_start_decompress(&m_jpeg);
        std::array<JSAMPROW, 16> rows;
        while (m_jpeg.output_scanline < m_jpeg.output_height) {
            const JDIMENSION nFirst = m_jpeg.output_scanline;
            const auto nRows = std::min(static_cast<JDIMENSION>(rows.size()), m_jpeg.output_height - nFirst);
            for (JDIMENSION i = 0; i < nRows; ++i)
                rows[i] = reinterpret_cast<JSAMPROW>(m_pSurface->Row(static_cast<int>(nFirst + i)));
            const JDIMENSION nRead = jpeg_read_scanlines(&m_jpeg, rows.data(), nRows);
            for (JDIMENSION i = 0; bInk && i < nRead; ++i)
                InkToPixels(reinterpret_cast<DWORD*>(rows[i]), m_pSurface->Width(),
                            m_jpeg.saw_Adobe_marker != FALSE);
        }
    }

    FileBytes m_file;
    jpeg_decompress_struct m_jpeg{};
    jpeg_progress_mgr m_progress{};
    gdi::Surface* m_pSurface = nullptr;
    std::int64_t m_nPixels = 0;
};

} // namespace

Gdiplus::Status ReadJpeg(const File& file, std::optional<Picture>& picture)
{
    NeedRoom(); // for what the library has in each thread
    return JpegDecoder(*file).Run(picture);
}

} // namespace kx::gdiplus::codecs
