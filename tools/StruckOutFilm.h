// SPDX-License-Identifier: MIT
#pragma once

/// A drawing of a frame of film, struck out by a line from the lower left to the upper right, in the middle
/// of a picture.
class StruckOutFilm
{
public:
    /// `width` and `height` are those of the picture in pixels. The drawing fills some two thirds of it.
    StruckOutFilm(int width, int height);

    /// Whether all pixels of the line have the share 0.
    bool isOutside(int y) const;

    /// How much of the pixel the drawing covers, from 0 to 1.
    double shareAt(int x, int y) const;

private:
    double m_unit; // the height of the film in pixels
    double m_centreX;
    double m_centreY;
};
