// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwell::test
{

/// Red, green and blue bytes, line by line. Empty where there is no picture.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    bool isEmpty() const { return pixels.empty(); }
};

/// How a container says its picture is to be shown: the coded point (x, y), y downwards, is shown at
/// (a x + c y, b x + d y), moved so that the picture begins at the origin.
struct Matrix {
    int a = 1;
    int b = 0;
    int c = 0;
    int d = 1;
};

/// First `first`, then `second`.
Matrix combined(const Matrix& first, const Matrix& second);

/// That many quarter turns counterclockwise.
Matrix quarterTurnsLeft(int count);

bool isMirrored(const Matrix& matrix);

/// Reads a picture in the portable pixmap format; an empty one where the bytes are none.
Picture parsePixmap(const std::string& bytes);

/// The picture as a decoder that obeys the matrix shows it.
Picture shownBy(const Matrix& matrix, const Picture& coded);

/// A quarter turn counterclockwise.
Picture turnedLeft(const Picture& picture);

/// Top and bottom exchanged where `vertically`, left and right where `horizontally`.
Picture mirrored(const Picture& picture, bool vertically, bool horizontally);

/// Whether one picture has as many lines and columns as the other, or at most `spare` fewer or more.
bool haveSameSize(const Picture& left, const Picture& right, int spare);

/// The mean difference over the common part, in grey levels, of the channel that differs most. 255 where one
/// of them is empty or a side differs by more than one.
double meanDifference(const Picture& left, const Picture& right);

} // namespace tarnwell::test
