#pragma once

#include "platform/GdiPlus.h"
#include "platform/String.h"

#include <memory>

namespace kx::draw {

// The index of the encoder of exactly that MIME type, whose class goes to `*pClsid`; -1 without one. A MIME
// type comes as the layer's UTF-16 or, through the public interface, as plain 16-bit numbers.
int FindEncoder(const WCHAR* pszMimeType, GUID* pClsid);
int FindEncoder(const unsigned short* pszMimeType, GUID* pClsid);

// Saves a picture to a file; 1 on success.
int Save(const Gdiplus::Image& image, const CString& strPath, const WCHAR* pszMimeType);
// Saves into a new array, which the caller ends with array delete. 1 even where the encoding failed, with an
// array of no bytes; 0, with the results as they were, for a lack of memory, encoder or `ppData`.
int Save(const Gdiplus::Image& image, const WCHAR* pszMimeType, BYTE** ppData, int& nSize);

// A picture of exactly that size; null for a lack of memory.
std::unique_ptr<Gdiplus::Image> MakeThumbnail(Gdiplus::Image& image, int nWidth, int nHeight);

} // namespace kx::draw
