#pragma once

#include <KXCommonClass.h>

namespace client {

// Make the files that the scene of pictures loads. False when that fails.

// A PNG of 96 by 96: a glass ball with a soft shadow, of all opacities.
bool MakeBallPng(const CString& strPath);
// The landscape as a JPEG.
bool MakeLandscapeJpeg(const CString& strPath);
// A GIF of eight frames of 48 by 48: a ring of dots that goes round.
bool MakeSpinnerGif(const CString& strPath);

} // namespace client
