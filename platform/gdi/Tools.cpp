#include "platform/gdi/Tools.h"

#include "platform/Errno.h"
#include "platform/Immortal.h"

#include <array>
#include <new>

using namespace kx::gdi;

namespace {

using Stock = std::array<std::shared_ptr<Object>, DEFAULT_GUI_FONT + 1>;

Stock MakeStock()
{
    Stock stock;
    const auto put = [&](int nIndex, std::shared_ptr<Object> object) {
        if (!Add(object, true)) throw std::bad_alloc();
        stock[static_cast<std::size_t>(nIndex)] = std::move(object);
    };
    const auto brush = [&](int nIndex, unsigned nGrey) {
        put(nIndex, std::make_shared<Brush>(RGB(nGrey, nGrey, nGrey)));
    };
    brush(WHITE_BRUSH, 255);
    brush(LTGRAY_BRUSH, 192);
    brush(GRAY_BRUSH, 128);
    brush(DKGRAY_BRUSH, 64);
    brush(BLACK_BRUSH, 0);
    put(NULL_BRUSH, std::make_shared<Brush>(std::nullopt));
    put(WHITE_PEN, std::make_shared<Pen>(UINT{PS_SOLID}, 1, RGB(255, 255, 255)));
    put(BLACK_PEN, std::make_shared<Pen>(UINT{PS_SOLID}, 1, RGB(0, 0, 0)));
    put(NULL_PEN, std::make_shared<Pen>(UINT{PS_NULL}, 1, RGB(0, 0, 0)));
    put(SYSTEM_FONT, MakeStockFont());
    put(DEFAULT_GUI_FONT, MakeStockFont());
    return stock;
}

} // namespace

HPEN CreatePen(int nStyle, int nWidth, COLORREF clr)
try {
    if (nStyle != PS_SOLID && nStyle != PS_NULL) return nullptr;
    return static_cast<HPEN>(Add(std::make_shared<Pen>(static_cast<UINT>(nStyle), nWidth, clr)));
} catch (...) {
    return kx::NoMemory();
}

HBRUSH CreateSolidBrush(COLORREF clr)
try {
    return static_cast<HBRUSH>(Add(std::make_shared<Brush>(clr)));
} catch (...) {
    return kx::NoMemory();
}

HGDIOBJ GetStockObject(int nIndex)
try {
    static kx::Immortal<Stock> stock(MakeStock());
    if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= stock->size()) return nullptr;
    const auto& object = stock.Get()[static_cast<std::size_t>(nIndex)];
    return object ? object->Handle() : nullptr;
} catch (...) {
    return kx::NoMemory();
}
