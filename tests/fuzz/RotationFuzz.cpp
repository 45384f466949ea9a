// SPDX-License-Identifier: MIT
// Input: any text as a display matrix. The result is a rotation or a reflection that preserves the size, or
// no value.
#include "tests/fuzz/Promise.h"
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
    promise(std::abs(area - 1) < 2 * tolerance, "the size is kept");
    const int tag = rotationTag(matrix);
    promise(tag >= 0 && tag < 360, "a tag is a turn");
    const DisplayMatrix turned = combined(matrix, turnedLeft(90));
    promise(isMirrored(turned) == isMirrored(matrix), "a turn leaves a mirror as it is");
    promise(distance(rotationTag(turned), tag + 270) <= 1, "a turn to the left takes a quarter from the tag");
}

/// A matrix survives printing in ffprobe's format and parsing.
void checkPrinted(const DisplayMatrix& matrix)
{
    const auto again = parseDisplayMatrix(printed(matrix));
    promise(again && rotationTag(*again) == rotationTag(matrix) && isMirrored(*again) == isMirrored(matrix),
        "what is printed is read again as it was");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    const std::string text = bytesOf(data, size);
    const auto matrix = parseDisplayMatrix(text);
    const auto decoded = parseDecodedMatrix(text);
    promise(decoded || !matrix, "what keeps the size is decoded");
    if (!decoded)
        return 0;
    promise(hasNineNumbers(text), "garbage is no matrix");
    checkMatrix(*decoded);
    if (matrix) {
        checkMatrix(*matrix);
        checkPrinted(*matrix);
        promise(
            distance(rotationTag(*matrix), rotationTag(*decoded)) <= 1, "a decoder turns it the same way");
    }
    return 0;
}
