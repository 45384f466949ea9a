// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The turn, mirror and scale of a container's display matrix: the coded point (x, y), y downwards, is shown
/// at (a x + c y, b x + d y).
struct DisplayMatrix {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
};

/// Whether the matrix only turns and mirrors.
bool keepsShapeAndSize(const DisplayMatrix& matrix);

/// The turn and mirror of a matrix that may scale, as decoders apply them. Empty for a matrix that skews the
/// picture or reduces it to nothing.
std::optional<DisplayMatrix> withoutScale(const DisplayMatrix& matrix);

/// Parses the nine numbers in the format of ffprobe, numbered rows of fixed-point numbers. Empty for other
/// text and for a matrix that scales or skews the picture.
std::optional<DisplayMatrix> parseDisplayMatrix(std::string_view text);

/// Parses the same format and removes the scale, see withoutScale.
std::optional<DisplayMatrix> parseDecodedMatrix(std::string_view text);

/// A counterclockwise turn.
DisplayMatrix turnedLeft(double degrees);

/// The matrix that applies `first`, then `second`.
DisplayMatrix combined(const DisplayMatrix& first, const DisplayMatrix& second);

/// Whether the numbers are equal except for rounding errors.
bool areNearlyEqual(const DisplayMatrix& left, const DisplayMatrix& right);

/// Whether the picture is shown mirrored.
bool isMirrored(const DisplayMatrix& matrix);

/// The clockwise turn in whole degrees, 0 to 359, as decoders compute it, also for a mirrored matrix.
int rotationTag(const DisplayMatrix& matrix);
