// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// How the display matrix of a container turns, mirrors and scales a picture: the coded point (x, y), y
/// downwards, is shown at (a x + c y, b x + d y).
struct DisplayMatrix {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
};

/// Whether the matrix turns and mirrors the picture and does nothing else.
bool keepsShapeAndSize(const DisplayMatrix& matrix);

/// The turn and the mirror of a matrix that scales as well, as decoders apply it. Empty for a matrix that
/// skews the picture or makes it vanish.
std::optional<DisplayMatrix> withoutScale(const DisplayMatrix& matrix);

/// Reads the nine numbers as ffprobe prints them, in numbered rows of fixed-point numbers. Empty for other
/// text and for a matrix that scales or skews the picture.
std::optional<DisplayMatrix> parseDisplayMatrix(std::string_view text);

/// Reads the same text as withoutScale has it.
std::optional<DisplayMatrix> parseDecodedMatrix(std::string_view text);

/// A turn counterclockwise.
DisplayMatrix turnedLeft(double degrees);

/// First `first`, then `second`.
DisplayMatrix combined(const DisplayMatrix& first, const DisplayMatrix& second);

/// Whether the picture is shown mirrored.
bool isMirrored(const DisplayMatrix& matrix);

/// The clockwise turn in whole degrees, 0 to 359, as decoders compute it, for a mirrored matrix too.
int rotationTag(const DisplayMatrix& matrix);
