// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tarnwell
{

// The titles of the sheets that follow the panels "Open Video" and "Save Video".

inline QString openingTitle()
{
    return QStringLiteral("Opening Video");
}

inline QString savingTitle()
{
    return QStringLiteral("Saving Video");
}

} // namespace tarnwell
