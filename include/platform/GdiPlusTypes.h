#pragma once

// The values that the calls of GdiPlusFlat.h and the classes of GdiPlus.h take and give.

#include "Guid.h"
#include "Types.h"

#ifdef Status // Xlib's macro for int, which as a type serves its users as well
#undef Status
using Status = int;
#endif

namespace Gdiplus {

// The layer's own names of plain types.
using REAL = float;
using INT = std::int32_t;
using ARGB = std::uint32_t; // 0xAARRGGBB, the colours not multiplied by the alpha
// One of the PixelFormat numbers below.
using PixelFormat = INT;

// How a call ended.
enum Status
{
    // It did what was asked.
    Ok = 0,
    GenericError = 1, // broken picture, failed read or write
                      // An argument makes no sense.
    InvalidParameter = 2,
    OutOfMemory = 3, // also a picture beyond the limits of size
    ObjectBusy = 4,
    InsufficientBuffer = 5,
    NotImplemented = 6,
    Win32Error = 7,
    WrongState = 8,
    Aborted = 9,
    FileNotFound = 10,
    ValueOverflow = 11,
    AccessDenied = 12,
    UnknownImageFormat = 13,
    UnsupportedGdiplusVersion = 17,
    GdiplusNotInitialized = 18,
    PropertyNotFound = 19,
    PropertyNotSupported = 20
};
// The same.
using GpStatus = Status;

// In what lengths are counted.
enum Unit
{
    // The platform's numbers.
    UnitWorld = 0,
    UnitDisplay = 1,
    UnitPixel = 2
};
// The same.
using GpUnit = Unit;

// The colours behind the end of a gradient.
enum WrapMode
{
    // It begins anew.
    WrapModeTile = 0
};
// The same.
using GpWrapMode = WrapMode;

// The rule for the inside of a path that crosses itself.
enum FillMode
{
    // Every other part, or all.
    FillModeAlternate = 0,
    FillModeWinding = 1
};
// The same.
using GpFillMode = FillMode;

// By how much a picture is turned to the right, and how it is then mirrored.
enum RotateFlipType
{
    // Turned by none, 90, 180 or 270 degrees, mirrored along none, x, y or both.
    RotateNoneFlipNone = 0,
    Rotate90FlipNone = 1,
    Rotate180FlipNone = 2,
    Rotate270FlipNone = 3,
    RotateNoneFlipX = 4,
    Rotate90FlipX = 5,
    Rotate180FlipX = 6,
    Rotate270FlipX = 7,
    RotateNoneFlipY = Rotate180FlipX,
    Rotate90FlipY = Rotate270FlipX,
    Rotate180FlipY = RotateNoneFlipX,
    Rotate270FlipY = Rotate90FlipX,
    RotateNoneFlipXY = Rotate180FlipNone,
    Rotate90FlipXY = Rotate270FlipNone,
    Rotate180FlipXY = RotateNoneFlipNone,
    Rotate270FlipXY = Rotate90FlipNone
};

// For what a change of colours holds.
enum ColorAdjustType
{
    // For all.
    ColorAdjustTypeDefault = 0
};

// The parts of a drawing that a matrix changes.
enum ColorMatrixFlags
{
    // All colours.
    ColorMatrixFlagsDefault = 0
};

// A colour as the row (red, green, blue, alpha, 1), each from 0 to 1, times this.
struct ColorMatrix
{
    // By row: what red, green, blue, alpha and 1 give to each.
    REAL m[5][5];
};

// A point in pixels.
struct Point
{
    // From the left, from the top.
    INT X = 0;
    INT Y = 0;
};
// The same.
using GpPoint = Point;

// A rectangle by its place and size in pixels.
struct Rect
{
    // Place and size.
    INT X = 0;
    INT Y = 0;
    INT Width = 0;
    INT Height = 0;
};
// The same.
using GpRect = Rect;

// How a picture's pixels were stored: their depth, and what they have.
inline constexpr PixelFormat PixelFormatUndefined = 0;
inline constexpr PixelFormat PixelFormat1bppIndexed = 0x00030101;
inline constexpr PixelFormat PixelFormat4bppIndexed = 0x00030402;
inline constexpr PixelFormat PixelFormat8bppIndexed = 0x00030803;
inline constexpr PixelFormat PixelFormat16bppRGB555 = 0x00021005;
inline constexpr PixelFormat PixelFormat16bppRGB565 = 0x00021006;
inline constexpr PixelFormat PixelFormat24bppRGB = 0x00021808;
inline constexpr PixelFormat PixelFormat32bppRGB = 0x00022009;
inline constexpr PixelFormat PixelFormat32bppARGB = 0x0026200A;

// The number of a property of a picture.
using PROPID = DWORD;
inline constexpr PROPID PropertyTagFrameDelay = 0x5100; // hundredths of a second, one for each frame
// The type of the property that there is: numbers of 32 bits.
inline constexpr WORD PropertyTagTypeLong = 4;

// A property of a picture.
struct PropertyItem
{
    // The property's number, and how many bytes its value has.
    PROPID id;
    DWORD length; // of the value, in bytes
    // Its type, and the value, behind this record.
    WORD type;
    void* value;
};

// {6AEDBD6D-3FB5-418A-83A6-7F45229DC872}
inline constexpr GUID FrameDimensionTime{
    0x6AEDBD6D, 0x3FB5, 0x418A, {0x83, 0xA6, 0x7F, 0x45, 0x22, 0x9D, 0xC8, 0x72}};
// {7462DC86-6180-4C7E-8E3F-EE7333A7A483}
inline constexpr GUID FrameDimensionPage{
    0x7462DC86, 0x6180, 0x4C7E, {0x8E, 0x3F, 0xEE, 0x73, 0x33, 0xA7, 0xA4, 0x83}};

// The id of an encoder.
using CLSID = GUID;

// The texts end in a NUL and live as long as the library.
struct ImageCodecInfo
{
    // The parameters that Save takes.
    CLSID Clsid;
    GUID FormatID;
    const WCHAR* CodecName;
    const WCHAR* FormatDescription;
    const WCHAR* FilenameExtension; // "*.JPG;*.JPEG"
    const WCHAR* MimeType;
};

// Taken and ignored: the encoders have no choices.
struct EncoderParameters;

// A long drawing may ask this whether to stop.
using GetThumbnailImageAbort = int (*)(void*);
using DrawImageAbort = GetThumbnailImageAbort;

// GdiplusStartup is told this: version 1.
struct GdiplusStartupInput
{
    // 1; the rest doesn't count.
    DWORD GdiplusVersion = 1;
    void* DebugEventCallback = nullptr;
    int SuppressBackgroundThread = 0;
    int SuppressExternalCodecs = 0;
};
struct GdiplusStartupOutput;

// A picture of more pixels than this, or with a side above the second, is refused before anything is
// allocated for it: OutOfMemory.
inline constexpr std::int64_t MAX_IMAGE_PIXELS = std::int64_t{1} << 26;
inline constexpr int MAX_IMAGE_SIDE = 32767;
// The frames of an animation that plays over and over are kept as pictures if they have no more pixels than
// this in all. Of a longer one each frame is decoded anew; so many pixels then let players that share the
// picture go on each from its own frame, up to 64 of them.
inline constexpr std::int64_t MAX_KEPT_FRAMES_PIXELS = std::int64_t{1} << 23;
// The longest file or stream that is read.
inline constexpr std::int64_t MAX_IMAGE_BYTES = std::int64_t{1} << 28;

} // namespace Gdiplus
