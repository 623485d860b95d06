#pragma once

#include "SkinPainter.h"

namespace client {

// What the client's windows show.
void PaintTrainer(SkinPainter& painter, const CRect& rcClient);
void PaintFriends(SkinPainter& painter, const CRect& rcClient);
void PaintFriendMenu(SkinPainter& painter, const CRect& rcClient);

// The page of the trainer on what the skin offers.
void PaintSkinSamples(SkinPainter& painter, const CRect& rc);

} // namespace client
