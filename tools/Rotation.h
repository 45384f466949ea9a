// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// How a container says its picture is to be shown: the coded point (x, y), y downwards, is shown at
/// (a x + c y, b x + d y). Turns and mirrors only; where the picture is moved to does not count.
struct DisplayMatrix {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
};

/// Reads the nine numbers as ffprobe prints them, in numbered rows of fixed-point numbers. Nothing for
/// garbage and for a matrix that scales or skews the picture.
std::optional<DisplayMatrix> parseDisplayMatrix(std::string_view text);

/// The same of what decoders make of the numbers: they turn and mirror the picture and do not scale it.
std::optional<DisplayMatrix> parseDecodedMatrix(std::string_view text);

/// A turn counterclockwise.
DisplayMatrix turnedLeft(double degrees);

/// First `first`, then `second`.
DisplayMatrix combined(const DisplayMatrix& first, const DisplayMatrix& second);

/// Whether the picture is shown as in a mirror.
bool isMirrored(const DisplayMatrix& matrix);

/// The clockwise turn in whole degrees, 0 to 359, as decoders reckon it. A mirrored matrix has such a number
/// too.
int rotationTag(const DisplayMatrix& matrix);
