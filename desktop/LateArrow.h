// SPDX-License-Identifier: MIT
#pragma once

namespace tarnwell
{

/// Has the arrow of menu bars and toolbars that do not fit read its picture when it is first drawn, and not
/// when they are made, as Qt does. Draws with the style of the moment, otherwise unchanged. Call it before
/// there are widgets.
void putOffArrowPicture();

} // namespace tarnwell
