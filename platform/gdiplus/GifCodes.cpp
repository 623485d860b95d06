#include "platform/gdiplus/GifCodes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gif_lib.h>
#include <memory>

namespace kx::gdiplus {

namespace {

// What the GIF library reads: a file of that one frame, of which it needs neither the place nor the colours.
class OneFrame
{
public:
    OneFrame(FileBytes file, const GifFrame& frame) noexcept : m_data(file.subspan(frame.dataAt))
    {
        std::memcpy(m_head.data(), "GIF89a", 6);
        m_head[kDescriptor] = ',';
        for (const std::size_t at : {std::size_t{6}, kDescriptor + 5}) {
            Put(at, frame.width);
            Put(at + 2, frame.height);
        }
        m_rest = m_head;
    }

    int Read(GifByteType* pBytes, int nBytes) noexcept
    {
        int nDone = 0;
        while (nDone < nBytes && (!m_rest.empty() || !m_data.empty())) {
            if (m_rest.empty()) std::swap(m_rest, m_data);
            const std::size_t n = std::min(m_rest.size(), static_cast<std::size_t>(nBytes - nDone));
            std::memcpy(pBytes + nDone, m_rest.data(), n);
            m_rest = m_rest.subspan(n);
            nDone += static_cast<int>(n);
        }
        return nDone;
    }

private:
    static constexpr std::size_t kDescriptor = 13;

    void Put(std::size_t at, int nValue) noexcept
    {
        m_head[at] = static_cast<std::uint8_t>(nValue);
        m_head[at + 1] = static_cast<std::uint8_t>(nValue >> 8);
    }

    std::array<std::uint8_t, kDescriptor + 10> m_head{};
    FileBytes m_rest; // of the head, then of the data
    FileBytes m_data;
};

int ReadBytes(GifFileType* gif, GifByteType* pBytes, int nBytes)
{
    return static_cast<OneFrame*>(gif->UserData)->Read(pBytes, nBytes);
}

struct CloseGif
{
    void operator()(GifFileType* gif) const noexcept { DGifCloseFile(gif, nullptr); }
};

} // namespace

int GifIndices::Decode(FileBytes file, const GifFrame& frame) noexcept
{
    OneFrame source(file, frame);
    const std::unique_ptr<GifFileType, CloseGif> gif(DGifOpen(&source, ReadBytes, nullptr));
    GifRecordType record = UNDEFINED_RECORD_TYPE;
    if (!gif || DGifGetRecordType(gif.get(), &record) != GIF_OK || DGifGetImageDesc(gif.get()) != GIF_OK)
        return 0;
    int nRows = 0;
    while (nRows < frame.height && DGifGetLine(gif.get(),
                                               m_bytes.data() + static_cast<std::size_t>(nRows) *
                                                                    static_cast<std::size_t>(frame.width),
                                               frame.width) == GIF_OK)
        ++nRows;
    return nRows;
}

} // namespace kx::gdiplus
