#include "platform/gdi/Stock.h"

#include "platform/Immortal.h"
#include "platform/gdi/Brush.h"
#include "platform/gdi/Pen.h"

#include <array>

namespace kx::gdi {

namespace {

using Stock = std::array<std::shared_ptr<Object>, DEFAULT_GUI_FONT + 1>;

Stock MakeStock()
{
    Stock stock;
    const auto put = [&](int nIndex, std::shared_ptr<Object> object) {
        if (Add(object, true)) stock[static_cast<std::size_t>(nIndex)] = std::move(object);
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
    put(SYSTEM_FONT, MakeStockFont(SYSTEM_FONT));
    put(DEFAULT_GUI_FONT, MakeStockFont(DEFAULT_GUI_FONT));
    return stock;
}

} // namespace

std::shared_ptr<Object> StockObject(int nIndex)
{
    static Immortal<Stock> stock(MakeStock());
    if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= stock->size()) return nullptr;
    return stock.Get()[static_cast<std::size_t>(nIndex)];
}

} // namespace kx::gdi

HGDIOBJ GetStockObject(int nIndex)
{
    const auto object = kx::gdi::StockObject(nIndex);
    return object ? object->Handle() : nullptr;
}
