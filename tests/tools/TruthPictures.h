// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwell::test
{

/// Red, green and blue bytes, line by line. Empty if there is no picture.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    bool isEmpty() const { return pixels.empty(); }
};

/// A container's display matrix without the shift: the coded point (x, y), y downwards, is shown at (a x + c
/// y, b x + d y), moved so that the picture begins at the origin.
struct Matrix {
    int a = 1;
    int b = 0;
    int c = 0;
    int d = 1;
};

/// The matrix that applies `first`, then `second`.
Matrix combined(const Matrix& first, const Matrix& second);

/// `count` quarter turns counterclockwise.
Matrix quarterTurnsLeft(int count);

bool isMirrored(const Matrix& matrix);

/// Parses a picture in the portable pixmap format; empty if the bytes are invalid.
Picture parsePixmap(const std::string& bytes);

/// The picture as a decoder that obeys the matrix shows it.
Picture shownBy(const Matrix& matrix, const Picture& coded);

/// A quarter turn counterclockwise.
Picture turnedLeft(const Picture& picture);

/// Exchanges top and bottom if `vertically`, left and right if `horizontally`.
Picture mirrored(const Picture& picture, bool vertically, bool horizontally);

/// Whether widths and heights each differ by at most `spare`.
bool haveSameSize(const Picture& left, const Picture& right, int spare);

/// The mean difference over the common part, in grey levels, of the channel that differs most. 255 if a
/// picture is empty or a side differs by more than one.
double meanDifference(const Picture& left, const Picture& right);

} // namespace tarnwell::test
