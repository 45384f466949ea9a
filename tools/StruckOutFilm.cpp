// SPDX-License-Identifier: MIT
#include "tools/StruckOutFilm.h"

#include <algorithm>
#include <cmath>

namespace
{

// Lengths in units of the film's height.
constexpr double halfWidth = 0.68;
constexpr double halfHeight = 0.5;
constexpr double cornerRadius = 0.12;
constexpr double halfLine = 0.03;
constexpr double columnEdge = 0.44; // distance of the perforation's column from the centre
constexpr double holeEdge = 0.17; // distance of the lines between the holes from the centre
constexpr double strikeX = 0.66; // the end of the strike
constexpr double strikeY = 0.62;
constexpr double strikeGap = 0.055; // between the strike and the film

constexpr double filmShareOfPicture = 0.6;
constexpr double spanX = halfWidth + halfLine; // half the size of the drawing
constexpr double spanY = strikeY + halfLine;

double lengthOf(double x, double y)
{
    return std::sqrt(x * x + y * y); // std::hypot takes several times as long
}

/// Distance from the point to the edge of a rectangle around the origin; negative inside.
double distanceToRectangle(double x, double y, double halfWide, double halfHigh, double radius)
{
    const double beyondX = std::abs(x) - halfWide + radius;
    const double beyondY = std::abs(y) - halfHigh + radius;
    return lengthOf(std::max(beyondX, 0.0), std::max(beyondY, 0.0))
        + std::min(std::max(beyondX, beyondY), 0.0) - radius;
}

/// Distance to the middle of the nearest line of the film.
double distanceToFilm(double x, double y)
{
    x = std::abs(x);
    y = std::abs(y);
    const double outline = std::abs(distanceToRectangle(x, y, halfWidth, halfHeight, cornerRadius));
    const double column = distanceToRectangle(x - columnEdge, y, 0, halfHeight, 0);
    constexpr double columnMiddle = (columnEdge + halfWidth) / 2;
    const double hole = distanceToRectangle(x - columnMiddle, y - holeEdge, halfWidth - columnMiddle, 0, 0);
    return std::min({outline, column, hole});
}

double distanceToStrike(double x, double y)
{
    // Of the segment from (-strikeX, strikeY) to (strikeX, -strikeY); y points down.
    const double along
        = std::clamp((x * strikeX - y * strikeY) / (strikeX * strikeX + strikeY * strikeY), -1.0, 1.0);
    return lengthOf(x - along * strikeX, y + along * strikeY);
}

} // namespace

StruckOutFilm::StruckOutFilm(int width, int height)
    : m_unit(filmShareOfPicture * std::min<double>(height, width / (2 * halfWidth)))
    , m_centreX(width / 2.0)
    , m_centreY(height / 2.0)
{
}

bool StruckOutFilm::isOutside(int y) const
{
    return std::abs(y + 0.5 - m_centreY) > spanY * m_unit + 1;
}

double StruckOutFilm::shareAt(int x, int y) const
{
    const double fromCentre = x + 0.5 - m_centreX;
    if (std::abs(fromCentre) > spanX * m_unit + 1)
        return 0;
    const double unitX = fromCentre / m_unit;
    const double unitY = (y + 0.5 - m_centreY) / m_unit;
    // A pixel on an edge is covered in part.
    const auto covered = [this](double distance) { return std::clamp(0.5 - distance * m_unit, 0.0, 1.0); };
    const double strike = distanceToStrike(unitX, unitY);
    const double film = covered(distanceToFilm(unitX, unitY) - halfLine);
    const double gap = covered(strike - halfLine - strikeGap);
    return std::max(covered(strike - halfLine), film * (1 - gap));
}
