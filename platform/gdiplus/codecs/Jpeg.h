#pragma once

#include "include/platform/GdiPlusTypes.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/gdi/ImageFile.h"

#include <csetjmp>
#include <cstdio> // jpeglib.h needs it
#include <jerror.h>
#include <jpeglib.h>

namespace kx::gdiplus::codecs {

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
        emit_message = [](j_common_ptr, int) {};
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

} // namespace kx::gdiplus::codecs
