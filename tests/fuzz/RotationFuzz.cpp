// SPDX-License-Identifier: MIT
// Input: any text as a display matrix. The result is a rotation or a reflection that preserves the size, or
// no value.
#include "tests/fuzz/Verify.h"
#include "tools/Rotation.h"

#include <cmath>
#include <sstream>

namespace tarnwell::test
{

namespace
{

constexpr double one = 65536;

/// Whether the text contains nine integers besides the row numbers.
bool hasNineNumbers(const std::string& text)
{
    std::string blanks = text;
    for (char& letter : blanks)
        letter = letter == '\n' ? ' ' : letter;
    std::istringstream words(blanks);
    int numbers = 0;
    for (std::string word; std::getline(words, word, ' ');) {
        if (word.empty() || word.back() == ':')
            continue;
        if (word.find_first_not_of("-0123456789") != std::string::npos || word.rfind('-') + 1 > 1)
            return false;
        ++numbers;
    }
    return numbers == 9;
}

/// The matrix in ffprobe's format.
std::string printed(const DisplayMatrix& m)
{
    const double rows[3][3] = {{m.a * one, m.b * one, 0}, {m.c * one, m.d * one, 0}, {0, 0, 1073741824}};
    std::string text = "\n";
    for (int row = 0; row < 3; ++row) {
        char line[64] = {};
        std::snprintf(
            line, sizeof line, "%08d: %11.0f %11.0f %11.0f\n", row, rows[row][0], rows[row][1], rows[row][2]);
        text += line;
    }
    return text;
}

int distance(int left, int right)
{
    const int difference = std::abs(left - right) % 360;
    return std::min(difference, 360 - difference);
}

void checkMatrix(const DisplayMatrix& matrix)
{
    constexpr double tolerance = 0.002;
    const double area = std::abs(matrix.a * matrix.d - matrix.b * matrix.c);
    verify(std::abs(area - 1) < 2 * tolerance, "the matrix preserves the size");
    const int tag = rotationTag(matrix);
    verify(tag >= 0 && tag < 360, "a tag is 0 to 359");
    const DisplayMatrix turned = combined(matrix, turnedLeft(90));
    verify(isMirrored(turned) == isMirrored(matrix), "a rotation does not change the reflection");
    verify(distance(rotationTag(turned), tag + 270) <= 1, "a turn to the left reduces the tag by 90");
}

/// A matrix survives printing in ffprobe's format and parsing.
void checkPrinted(const DisplayMatrix& matrix)
{
    const auto again = parseDisplayMatrix(printed(matrix));
    verify(again && rotationTag(*again) == rotationTag(matrix) && isMirrored(*again) == isMirrored(matrix),
        "a printed matrix parses to the same matrix");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    const std::string text = bytesOf(data, size);
    const auto matrix = parseDisplayMatrix(text);
    const auto decoded = parseDecodedMatrix(text);
    verify(decoded || !matrix, "a matrix that preserves the size is also a decoded matrix");
    if (!decoded)
        return 0;
    verify(hasNineNumbers(text), "a matrix has nine numbers");
    checkMatrix(*decoded);
    if (matrix) {
        checkMatrix(*matrix);
        checkPrinted(*matrix);
        verify(distance(rotationTag(*matrix), rotationTag(*decoded)) <= 1,
            "both matrices have the same rotation");
    }
    return 0;
}
