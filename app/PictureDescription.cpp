// SPDX-License-Identifier: MIT
#include "app/PictureDescription.h"

#include "desktop/ImageView.h"
#include "desktop/PathText.h"
#include "platform/FileURL.h"

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

void describeFile(ImageView& view, const std::string& path)
{
    view.setImageWords(textOfPath(lastPathComponent(path)), orientationInWords({}));
}

void describeOrientation(ImageView& view, const OrientationState& state)
{
    view.setImageWords(view.imageName(), orientationInWords(state));
}

} // namespace tarnwell
