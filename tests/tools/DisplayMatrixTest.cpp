// SPDX-License-Identifier: MIT
// The display matrix in a report, its rotation tag, and turns.
#include "tests/tools/MatrixText.h"
#include "tests/tools/Orientations.h"
#include "tools/Rotation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

const DisplayMatrix unmoved;

void expectNear(const DisplayMatrix& actual, const DisplayMatrix& expected)
{
    constexpr double rounding = 1e-9;
    EXPECT_NEAR(actual.a, expected.a, rounding);
    EXPECT_NEAR(actual.b, expected.b, rounding);
    EXPECT_NEAR(actual.c, expected.c, rounding);
    EXPECT_NEAR(actual.d, expected.d, rounding);
}

std::optional<DisplayMatrix> parsed(const DisplayMatrix& m)
{
    return parseDisplayMatrix(matrixText(m.a, m.b, m.c, m.d));
}

} // namespace

TEST(DisplayMatrixTest, everyOrientationIsReadFromItsNineNumbers)
{
    for (const auto& row : orientations) {
        SCOPED_TRACE(row.name);
        const auto matrix = parsed(row.matrix);
        ASSERT_TRUE(matrix);
        expectNear(*matrix, row.matrix);
        EXPECT_EQ(rotationTag(*matrix), row.tag);
        EXPECT_EQ(isMirrored(*matrix), row.isMirrored);
    }
}

TEST(DisplayMatrixTest, aTurnByAnyAngleIsReadInWholeDegrees)
{
    for (const int degrees : {1, 45, 89, 91, 135, 200, 271, 359}) {
        SCOPED_TRACE(degrees);
        const auto matrix = parsed(turnedLeft(360 - degrees));
        ASSERT_TRUE(matrix);
        EXPECT_EQ(rotationTag(*matrix), degrees);
        EXPECT_FALSE(isMirrored(*matrix));
    }
}

TEST(DisplayMatrixTest, theTranslationTheLastColumnAndRoundingAreIgnored)
{
    struct Change {
        std::size_t place;
        long long number;
    };
    for (const Change& change : std::vector<Change>{
             {6, 480LL * 65536}, {7, -7}, {2, 65536}, {5, 65536}, {8, 65536}, {0, 1}, {1, 65535}}) {
        auto numbers = matrixNumbers(0, 1, -1, 0);
        numbers[change.place] = change.number;
        const auto matrix = parseDisplayMatrix(textOfNumbers(numbers));
        ASSERT_TRUE(matrix) << change.place;
        EXPECT_EQ(rotationTag(*matrix), 90) << change.place;
    }
}

TEST(DisplayMatrixTest, matricesThatScaleOrSkewAreRefused)
{
    struct Row {
        const char* name;
        std::vector<long long> numbers;
    };
    const long long one = 65536;
    const long long last = 1073741824;
    const std::vector<Row> rows = {
        {"all zero", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"all zero but the last", {0, 0, 0, 0, 0, 0, 0, 0, last}},
        {"larger", {2 * one, 0, 0, 0, 2 * one, 0, 0, 0, last}},
        {"smaller", {one / 2, 0, 0, 0, one / 2, 0, 0, 0, last}},
        {"wider", {2 * one, 0, 0, 0, one, 0, 0, 0, last}},
        {"turned and larger", {0, 2 * one, 0, -2 * one, 0, 0, 0, 0, last}},
        {"skewed", {one, 0, 0, one, one, 0, 0, 0, last}},
        {"skewed without getting larger", {one, 0, 0, 46341, 46341, 0, 0, 0, last}},
        {"both axes the same", {one, 0, 0, one, 0, 0, 0, 0, last}},
        {"the smallest numbers", std::vector<long long>(9, -2147483648LL)},
        {"the largest numbers", std::vector<long long>(9, 2147483647LL)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(parseDisplayMatrix(textOfNumbers(row.numbers)));
    }
}

TEST(DecodedMatrixTest, isTurnedAndMirroredAndNotScaled)
{
    for (const auto& row : orientations) {
        for (const double width : {0.5, 1.0, 2.0}) {
            for (const double height : {0.25, 1.0, 3.0}) {
                SCOPED_TRACE(row.name);
                const DisplayMatrix& m = row.matrix;
                const auto decoded
                    = parseDecodedMatrix(matrixText(m.a * width, m.b * width, m.c * height, m.d * height));
                ASSERT_TRUE(decoded);
                expectNear(*decoded, m);
            }
        }
    }
}

TEST(DecodedMatrixTest, isAbsentForGarbage)
{
    const long long one = 65536;
    for (const std::vector<long long>& numbers : std::vector<std::vector<long long>>{
             {0, 0, 0, 0, 0, 0, 0, 0, 0}, {one, 0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, one, 0, 0, 0, 0},
             {one, 0, 0, one, one, 0, 0, 0, 0}, {one, 0, 0, one, 0, 0, 0, 0, 0}})
        EXPECT_FALSE(parseDecodedMatrix(textOfNumbers(numbers)));
    EXPECT_FALSE(parseDecodedMatrix("no matrix"));
}

TEST(DisplayMatrixTest, otherTextsAreRefused)
{
    const std::string good = matrixText(1, 0, 0, 1);
    const auto with = [&good](const std::string& from, const std::string& to) {
        std::string text = good;
        return text.replace(text.find(from), from.size(), to);
    };
    const std::vector<std::string> texts = {"", "\n", "no matrix at all", good.substr(0, good.rfind(' ')),
        good + " 0", good + good, with("65536", "nan"), with("65536", "-nan"), with("65536", "inf"),
        with("65536", "65536.0"), with("65536", "65536x"), with("65536", "99999999999999999999"),
        "00000000:\n00000001:\n00000002:\n"};
    ASSERT_TRUE(parseDisplayMatrix(good));
    for (const auto& text : texts)
        EXPECT_FALSE(parseDisplayMatrix(text)) << text;
}

TEST(TurnTest, quarterTurnsToTheLeftCountTheOtherWayRound)
{
    for (const int degrees : {0, 90, 180, 270, 360, 450, 720}) {
        SCOPED_TRACE(degrees);
        EXPECT_EQ(rotationTag(turnedLeft(degrees)), (720 - degrees) % 360);
        EXPECT_EQ(rotationTag(turnedLeft(-degrees)), degrees % 360);
        EXPECT_FALSE(isMirrored(turnedLeft(degrees)));
    }
}

TEST(TurnTest, aQuarterTurnToTheLeftBringsTheRightSideUp)
{
    // Point (1, 0), the right side, is shown at (a, b): above the origin, because y points downwards.
    expectNear(turnedLeft(90), {0, -1, 1, 0});
}

TEST(TurnTest, aTurnAfterAnyOrientationTurnsWhatIsShown)
{
    const std::vector<DisplayMatrix> turns = {{1, 0, 0, 1}, {0, -1, 1, 0}, {-1, 0, 0, -1}, {0, 1, -1, 0}};
    for (const auto& row : orientations) {
        for (std::size_t quarters = 0; quarters < turns.size(); ++quarters) {
            SCOPED_TRACE(std::string(row.name) + ", then quarter turns: " + std::to_string(quarters));
            const DisplayMatrix& shown = row.matrix;
            const DisplayMatrix turn = turns[quarters];
            // The images of (1, 0) and (0, 1) after both steps.
            const DisplayMatrix expected = {
                shown.a * turn.a + shown.b * turn.c,
                shown.a * turn.b + shown.b * turn.d,
                shown.c * turn.a + shown.d * turn.c,
                shown.c * turn.b + shown.d * turn.d,
            };
            expectNear(combined(shown, turnedLeft(90.0 * static_cast<double>(quarters))), expected);
        }
    }
}

TEST(TurnTest, theOrderOfMirrorAndTurnMatters)
{
    const DisplayMatrix mirror = {-1, 0, 0, 1};
    expectNear(combined(mirror, turnedLeft(90)), {0, 1, 1, 0});
    expectNear(combined(turnedLeft(90), mirror), {0, -1, -1, 0});
}

TEST(TurnTest, fourQuarterTurnsAndTwoMirrorsChangeNothing)
{
    DisplayMatrix turned;
    for (int quarter = 0; quarter < 4; ++quarter)
        turned = combined(turned, turnedLeft(90));
    expectNear(turned, unmoved);
    for (const auto& row : orientations) {
        if (row.isMirrored)
            expectNear(combined(row.matrix, row.matrix), unmoved);
    }
}

} // namespace tarnwell::test
