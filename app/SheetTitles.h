// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tarnwell
{

// The titles of the sheets that a user meets while opening and saving. The panels of desktop/ have the same.

inline QString openTitle()
{
    return QStringLiteral("Open Video");
}

inline QString saveTitle()
{
    return QStringLiteral("Save Video");
}

} // namespace tarnwell
