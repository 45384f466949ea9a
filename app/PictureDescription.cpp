// SPDX-License-Identifier: MIT
#include "app/PictureDescription.h"

#include "desktop/PathText.h"
#include "probe/FileProbe.h"
#include "probe/HumanReadable.h"
#include "util/Decimal.h"

#include <QStringList>

namespace tarnwell
{

namespace
{

constexpr std::int64_t turnedLeft = 2;
constexpr std::int64_t turnedAround = 3;
constexpr std::int64_t turnedRight = 4;

QString turnInWords(const OrientationState& state)
{
    switch (state.positionState) {
    case turnedLeft:
        return QStringLiteral("turned left");
    case turnedAround:
        return QStringLiteral("turned upside down");
    case turnedRight:
        return QStringLiteral("turned right");
    default:
        return isFlipped(state) ? QString() : QStringLiteral("as it was opened");
    }
}

QString mirrorsInWords(const OrientationState& state)
{
    if (state.vFlipState && state.hFlipState)
        return QStringLiteral("mirrored vertically and horizontally");
    if (state.vFlipState)
        return QStringLiteral("mirrored vertically");
    return state.hFlipState ? QStringLiteral("mirrored horizontally") : QString();
}

} // namespace

QString orientationInWords(const OrientationState& state)
{
    QStringList words{turnInWords(state), mirrorsInWords(state)};
    words.removeAll(QString());
    return words.join(QStringLiteral(", "));
}

QString factsInWords(const FileProbe& probe)
{
    QStringList facts;
    if (probe.videoWidth && probe.videoHeight)
        facts << QStringLiteral("%1 × %2").arg(*probe.videoWidth).arg(*probe.videoHeight);
    if (probe.duration > 0 && fitsInteger(probe.duration))
        facts << textOf(humanDuration(probe.duration));
    if (probe.fileSizeHuman)
        facts << textOf(*probe.fileSizeHuman);
    return facts.join(QStringLiteral(" · "));
}

} // namespace tarnwell
