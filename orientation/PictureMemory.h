// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace tarnwell
{

/// A picture of undefined contents whose memory, when the last copy of the picture has gone, is kept for the
/// next one of its size: memory that the system has to hand out anew costs more than drawing into it does. As
/// much is kept as one refresh of the preview takes. A null picture where there is no memory. Any thread.
QImage pictureInKeptMemory(QSize size, QImage::Format format);

} // namespace tarnwell
