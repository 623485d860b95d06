#pragma once

#include "SkinPainter.h"

namespace client {

// The contents of the client's windows.
void PaintTrainer(SkinPainter& painter, const CRect& rcClient);
void PaintFriends(SkinPainter& painter, const CRect& rcClient);
// The field where one types a line to a friend.
CRect FriendsField(const CRect& rcClient);
void PaintFriendMenu(SkinPainter& painter, const CRect& rcClient);

// The page of the trainer on what the skin offers.
void PaintSkinSamples(SkinPainter& painter, const CRect& rc);

} // namespace client
