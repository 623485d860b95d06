#include "include/platform/GdiPlusTypes.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/codecs/Codecs.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio> // jpeglib.h needs it
#include <jerror.h>
#include <jpeglib.h>

namespace kx::gdiplus::codecs {

namespace {

// Errors of the JPEG library leave by a jump over the frames in between, none of which may need a destructor.
// Nothing is written anywhere.
class JpegErrors : protected jpeg_error_mgr
{
protected:
    JpegErrors() noexcept
    {
        jpeg_std_error(this);
        error_exit = [](j_common_ptr jpeg) {
            if (debug::Wants("picture")) {
                char text[JMSG_LENGTH_MAX];
                jpeg->err->format_message(jpeg, text);
                gdi::NoteRefusal(text);
            }
            std::longjmp(static_cast<JpegErrors*>(jpeg->err)->m_jump, 1);
        };
        output_message = [](j_common_ptr) {};
    }

    // False if the step ended in an error.
    template <class Step>
    bool Guarded(Step&& step)
    {
        if (setjmp(m_jump) != 0) return false;
        step();
        return true;
    }
    Gdiplus::Status Failure() const noexcept
    {
        return msg_code == JERR_OUT_OF_MEMORY ? Gdiplus::OutOfMemory : Gdiplus::GenericError;
    }

private:
    std::jmp_buf m_jump;
};

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

namespace {

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

// The library's bytes go here: by blocks to the end of a file. (The library's own for memory keeps a block
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
        if (!Append(m_file, m_block.data(), nBytes)) ERREXIT(jpeg, JERR_OUT_OF_MEMORY);
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
        jpeg_set_defaults(&m_jpeg); // quality 75, colours at half the resolution
        if (IsGray(m_view)) jpeg_set_colorspace(&m_jpeg, JCS_GRAYSCALE);
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
