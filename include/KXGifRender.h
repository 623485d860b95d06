#pragma once

#include "KXExport.h"
#include "platform/Dc.h"
#include "platform/GdiPlus.h"

#include <memory>

// Plays an animated GIF from a file, over and over. It has no thread and no clock of its own: the client
// calls Playing with the time that it has, and draws the active frame.
//
// The client has called Gdiplus::GdiplusStartup. Copies share the picture with its active frame, and each
// counts on by itself, at the cost of one frame a step also where they stand at different ones, as far as the
// memory of Gdiplus::MAX_KEPT_FRAMES_PIXELS goes; the picture ends with the last of them. An object is used
// by one thread at a time, and so are those that share a picture.
class KX_API CKXGifRender
{
public:
    CKXGifRender() = default;
    CKXGifRender(const CKXGifRender& gif) = default;
    CKXGifRender& operator=(const CKXGifRender& gif) = default;
    // Ends the picture.
    virtual ~CKXGifRender();

    // Draws the active frame at its natural size. Nothing for a null `pDC` or without a picture.
    virtual void Render(CDC* pDC, int x, int y);
    // The clock's tick, in milliseconds of any clock, of which the low 32 bits count and may wrap: moves to
    // the next frame, at most one, when the delay of the one that is shown has passed since the last move. 1
    // as long as it is playing, whether it moved or not.
    virtual int Playing(unsigned long dwNow);
    // Starts at the first frame; 0 if it isn't stopped or there are fewer than two frames.
    virtual int Play();
    // Pauses, also what is stopped; what is paused goes on playing where it was.
    virtual void Pause();
    // Stops at the frame that is active; 0 if it was stopped already.
    virtual int Stop();

    // Loads a picture by its path in the process's code page, in place of the old one, which is gone in any
    // case; what is playing goes on with it. 0 for an empty path or what can't be read: nothing is drawn or
    // played then. A picture of one frame is drawn, not played.
    int Load(const CString& strPath);
    // The picture, which stays the object's; null without one.
    Gdiplus::Image* GetImage() const { return m_pImage.get(); }

protected:
    // Whether there is more than one frame.
    int CanPlay() const { return m_nFrameCount > 1; }
    // Makes the next frame active, behind the last one the first. A frame without a delay in the file, or one
    // below 10 ms or above 65,280 ms, takes 100 ms.
    void PlayNextFrame();
    // Lets go of the picture.
    void Release();
    // The place of the active frame within `rc`: in the middle, reduced in its shape to fit, never enlarged;
    // `rc` itself without a picture.
    void GetFixRenderRect(const CRect& rc, CRect& rcResult);
    // Draws it there.
    void FixRender(Gdiplus::Graphics& graphics, const CRect& rc);

    // Whether the frames move on.
    enum PlayState
    {
        Stopped = 0,
        Running = 1,
        Paused = 2,
    };

    // The state that Play and Stop have set.
    int m_nPlayState = Stopped;
    std::shared_ptr<Gdiplus::Image> m_pImage;
    DWORD m_nFrameDelay = 100; // of the active frame, in milliseconds
    DWORD m_dwLastTime = 0;    // when Playing last moved
    // A number of 32 bits for each frame, in hundredths of a second; a null value where the file has none.
    std::shared_ptr<Gdiplus::PropertyItem> m_pDelayItem;
    DWORD m_nFrameCount = 0;
    DWORD m_nCurFrame = 0xFFFFFFFF; // before the first one
};
