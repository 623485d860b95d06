// A TIFF file.
#include "fuzz/PictureFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return PictureFuzz::Run(data, size);
}
