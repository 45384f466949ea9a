// SPDX-License-Identifier: MIT
// Compares the preview with both kinds of saved video for every rotation and mirror of a container and each
// of the 16 changes, with any version of FFmpeg. Usage: truthTable TOOLS_FOLDER WORK_FOLDER
#include "tests/tools/TruthPictures.h"
#include "tests/tools/TruthTools.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr double agreement = 4; // grey levels; the largest difference of two lossy encodings
constexpr double distinction = 10; // grey levels; the smallest difference of another orientation
constexpr int fullTurn = 360;
constexpr int unusable = 2;
const std::string beyondTheEnd = "999.5";
const std::string beginning; // no position

struct Shape {
    std::string name;
    Recipe recipe;
};

struct Flag {
    std::string name;
    Matrix matrix;
    int tag = 0; // degrees clockwise, as decoders compute them; no tag if the matrix scales
    double scale = 1; // of the picture; kept by a byte copy, ignored by decoders
    std::int32_t last = 1073741824; // the ninth number, which decoders ignore
};

const std::vector<Flag> flags = {
    {"rotation 0", {1, 0, 0, 1}, 0},
    {"rotation 90", {0, -1, 1, 0}, 270},
    {"rotation 180", {-1, 0, 0, -1}, 180},
    {"rotation 270", {0, 1, -1, 0}, 90},
    {"left and right exchanged", {-1, 0, 0, 1}, 180},
    {"top and bottom exchanged", {1, 0, 0, -1}, 0},
    {"mirrored along the falling diagonal", {0, 1, 1, 0}, 90},
    {"mirrored along the rising diagonal", {0, -1, -1, 0}, 270},
    {"rotation 90, twice as large", {0, -1, 1, 0}, 0, 2},
    {"rotation 180, half as large", {-1, 0, 0, -1}, 0, 0.5},
    {"rotation 270 without a unit", {0, 1, -1, 0}, 90, 1, 65536},
    {"top and bottom exchanged, twice as large", {1, 0, 0, -1}, 0, 2},
};

/// One of the 16 changes and its argument lists.
struct Change {
    int quarterTurns = 0;
    bool vertical = false;
    bool horizontal = false;

    std::string name() const
    {
        return std::to_string(quarterTurns * 90) + " to the left"
            + (vertical ? ", top and bottom exchanged" : "")
            + (horizontal ? ", left and right exchanged" : "");
    }

    std::string filters() const
    {
        const std::vector<std::string> turns = {"", "transpose=2", "transpose=2,transpose=2", "transpose=1"};
        std::string chain = turns.at(static_cast<std::size_t>(quarterTurns));
        for (const char* mirror : {vertical ? "vflip" : "", horizontal ? "hflip" : ""})
            chain += std::string(chain.empty() || *mirror == '\0' ? "" : ",") + mirror;
        return chain;
    }

    /// The quarter turns of a change that a rotation flag can express; both mirrors together are half a turn.
    int turnsOfFlag() const { return (quarterTurns + (vertical ? 2 : 0)) % 4; }
};

std::vector<Change> allChanges()
{
    std::vector<Change> changes;
    for (int turns = 0; turns < 4; ++turns) {
        for (const bool vertical : {false, true}) {
            for (const bool horizontal : {false, true})
                changes.push_back({turns, vertical, horizontal});
        }
    }
    return changes;
}

Picture previewOf(const Picture& still, const Change& change)
{
    Picture preview = still;
    for (int turn = 0; turn < change.quarterTurns; ++turn)
        preview = turnedLeft(preview);
    return mirrored(preview, change.vertical, change.horizontal);
}

/// Counts the comparisons, prints those that disagree, and prints a sum for each group.
class Tally
{
public:
    /// In a group whose mirror this FFmpeg ignores, pictures may differ; such differences are counted
    /// separately.
    void beginGroup(const std::string& name, bool isMirrorLost)
    {
        m_group = name;
        m_isMirrorLost = isMirrorLost;
        m_cellsBefore = m_agreeing + m_disagreeing + m_notKept;
        m_agreeingBefore = m_agreeing;
    }

    void endGroup() const
    {
        std::cout << m_group << ": " << m_agreeing - m_agreeingBefore << " of "
                  << m_agreeing + m_disagreeing + m_notKept - m_cellsBefore << " cells agree" << std::endl;
    }

    void add(const std::string& cell, bool agrees, std::string instead)
    {
        ++(agrees ? m_agreeing : m_disagreeing);
        std::replace(instead.begin(), instead.end(), '\n', '|'); // one line per cell
        if (!agrees)
            std::cout << "  disagrees: " << m_group << ": " << cell << ": " << instead << std::endl;
    }

    void addPictures(const std::string& cell, const Picture& is, const Picture& shouldBe, int spareLines = 0)
    {
        const double difference = meanDifference(is, shouldBe);
        const bool agrees = difference < agreement && haveSameSize(is, shouldBe, spareLines);
        const std::string instead = sizeOf(is) + " for " + sizeOf(shouldBe) + ", they differ by "
            + std::to_string(difference) + " grey levels";
        if (agrees || !m_isMirrorLost || is.isEmpty()) {
            add(cell, agrees, instead);
            return;
        }
        ++m_notKept;
        std::cout << "  not kept here: " << m_group << ": " << cell << ": " << instead << std::endl;
    }

    bool isClean() const { return m_agreeing > 0 && m_disagreeing == 0; }

    void sumUp() const
    {
        if (m_notKept > 0)
            std::cout << m_notKept
                      << " cells of mirrored inputs are not kept here, as this FFmpeg ignores mirrors\n";
        std::cout << m_agreeing << " cells agree, " << m_disagreeing << " disagree" << std::endl;
    }

private:
    static std::string sizeOf(const Picture& picture)
    {
        return picture.isEmpty() ? "no picture"
                                 : std::to_string(picture.width) + "x" + std::to_string(picture.height);
    }

    std::string m_group;
    bool m_isMirrorLost = false;
    int m_agreeing = 0;
    int m_disagreeing = 0;
    int m_notKept = 0;
    int m_agreeingBefore = 0;
    int m_cellsBefore = 0;
};

/// One input and all outputs of the two tools for it.
class Group
{
public:
    Group(Tally& tally, std::string toolsFolder, std::string workFolder)
        : m_tally(tally)
        , m_creator(toolsFolder + "/creator")
        , m_sniffer(std::move(toolsFolder) + "/sniffer")
        , m_folder(std::move(workFolder))
        , m_input(m_folder + "/input.mp4")
        , m_output(m_folder + "/output.mp4")
        , m_stillPath(m_folder + "/still.jpg")
    {
    }

    void check(const std::string& movie, const Shape& shape, const Flag& flag)
    {
        const auto namesBefore = namesIn(m_folder);
        m_numbers = [&](const Matrix& matrix) {
            return numbersOf(matrix, shape.recipe.width, shape.recipe.height);
        };
        MatrixNumbers numbers = m_numbers(flag.matrix);
        for (const std::size_t place : {0U, 1U, 3U, 4U})
            numbers[place] = static_cast<std::int32_t>(numbers[place] * flag.scale);
        numbers[8] = flag.last;
        const std::string bytes = withMatrix(movie, numbers);
        writeFile(m_input, bytes);
        checkReport(flag);
        checkStills(flag);
        for (const Change& change : allChanges()) {
            checkTranscode(change);
            if (change.vertical == change.horizontal)
                checkFlag(change, flag);
        }
        m_tally.add("the input's bytes", readFile(m_input) == bytes, "they have changed");
        std::filesystem::remove(m_input);
        checkLeftovers(namesBefore);
    }

private:
    void checkReport(const Flag& flag)
    {
        const Outcome outcome = run({m_sniffer, "-v", "quiet", "-print_format", "json", "-show_format",
            "-show_streams", "-show_chapters", "-show_error", m_input});
        m_tag = std::atoi(textMember(outcome.output, "rotate").c_str());
        m_tally.add("the rotate tag", outcome.status == 0 && m_tag == flag.tag,
            "it is " + std::to_string(m_tag) + " for " + std::to_string(flag.tag) + ", exit status "
                + std::to_string(outcome.status));
        const auto format = outcome.output.find("\"format\"");
        const std::string duration
            = textMember(outcome.output.substr(std::min(format, outcome.output.size())), "duration");
        m_middle = std::to_string(std::atof(duration.c_str()) / 2);
    }

    Picture still(const std::string& position)
    {
        const Outcome outcome = run(
            {m_creator, "-v", "quiet", "-ss", position, "-i", m_input, "-frames:v", "1", "-y", m_stillPath});
        m_tally.add("the still at " + position + " goes well",
            outcome.status == 0 && outcome.errorMessages.empty(),
            "exit status " + std::to_string(outcome.status) + ", " + outcome.errorMessages);
        Picture picture = decodedFrame(m_stillPath, beginning);
        std::filesystem::remove(m_stillPath);
        return picture;
    }

    void checkStills(const Flag& flag)
    {
        m_still = still(m_middle);
        m_tally.addPictures("the still from the middle", m_still,
            shownBy(flag.matrix, decodedFrame(m_input, m_middle, Rotation::Ignored)));
        m_tally.addPictures("the still from beyond the end", still(beyondTheEnd),
            shownBy(flag.matrix, decodedFrame(m_input, beginning, Rotation::Ignored)));
        // The orientations of the still must differ; otherwise the comparison could not fail.
        double nearest = distinction;
        for (const Change& change : allChanges()) {
            if (change.vertical || change.quarterTurns + change.horizontal == 0)
                continue; // equal to another change, or no change
            nearest = std::min(nearest, meanDifference(previewOf(m_still, change), m_still));
        }
        m_tally.add("the previews can be told apart", nearest >= distinction,
            "two differ by " + std::to_string(nearest) + " grey levels");
    }

    /// The output of creator as players show it.
    Picture made(const std::string& cell, const Command& arguments)
    {
        Command command = {m_creator};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const Outcome outcome = run(command);
        m_tally.add(cell + ": goes well", outcome.status == 0 && isStatus(outcome.errorMessages),
            "exit status " + std::to_string(outcome.status) + ", standard error \"" + outcome.errorMessages
                + "\"");
        return decodedFrame(m_output, m_middle);
    }

    /// Whether the text consists of one or more complete lines "time=HH:MM:SS.hh".
    static bool isStatus(const std::string& text)
    {
        const std::string form = "time=00:00:00.00\n";
        for (std::size_t place = 0; place < text.size(); ++place) {
            const char expected = form[place % form.size()];
            const bool isDigit = text[place] >= '0' && text[place] <= '9';
            if (expected == '0' ? !isDigit : text[place] != expected)
                return false;
        }
        return !text.empty() && text.size() % form.size() == 0;
    }

    void checkTranscode(const Change& change)
    {
        Command arguments = {"-i", m_input, "-pix_fmt", "yuv420p"};
        if (!change.filters().empty())
            arguments.insert(arguments.end(), {"-vf", change.filters()});
        arguments.insert(arguments.end(), {"-metadata:s:v", "rotate=0", "-y", m_output});
        const std::string cell = "transcoded, " + change.name();
        // The encoder accepts even sides only.
        m_tally.addPictures(cell, made(cell, arguments), previewOf(m_still, change), 1);
        std::filesystem::remove(m_output);
    }

    void checkFlag(const Change& change, const Flag& flag)
    {
        const int rotation = change.turnsOfFlag() * 90 - m_tag;
        const std::string cell = "flag, " + change.name();
        m_tally.addPictures(cell,
            made(cell,
                {"-i", m_input, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v",
                    "rotate=" + std::to_string(rotation), "-y", m_output}),
            previewOf(m_still, change));
        const MatrixNumbers is = reportedMatrix(m_output);
        MatrixNumbers expected = m_numbers(combined(flag.matrix, quarterTurnsLeft(change.turnsOfFlag())));
        for (std::size_t place = 0; place < 8; ++place) // all but the ninth number
            expected[place] = static_cast<std::int32_t>(expected[place] * flag.scale);
        m_tally.add(cell + ": the matrix", is == expected, textOf(is));
        std::filesystem::remove(m_output);
    }

    static std::string textOf(const MatrixNumbers& numbers)
    {
        std::string text = "it is";
        for (const auto number : numbers)
            text += " " + std::to_string(number);
        return text;
    }

    void checkLeftovers(const std::set<std::string>& namesBefore)
    {
        std::string left;
        for (const auto& name : namesIn(m_folder))
            left += namesBefore.count(name) == 0 ? " " + name : "";
        m_tally.add("nothing is left over", left.empty(), "there is" + left);
    }

    Tally& m_tally;
    std::string m_creator;
    std::string m_sniffer;
    std::string m_folder;
    std::string m_input;
    std::string m_output;
    std::string m_stillPath;
    std::function<MatrixNumbers(const Matrix&)> m_numbers; // in the coded size
    std::string m_middle;
    int m_tag = 0;
    Picture m_still;
};

std::string movieOf(const Shape& shape, const std::string& folder)
{
    const std::string path = folder + "/movie.mp4";
    makeMovie(path, shape.recipe);
    const std::string movie = readFile(path);
    std::filesystem::remove(path);
    if (withMatrix(movie, {}).empty()) {
        std::cerr << "truthTable: ffmpeg made no usable movie, " << shape.name << "\n";
        std::exit(unusable);
    }
    return movie;
}

/// Whether the installed FFmpeg ignores the mirror of an input when it decodes.
bool ignoresMirrors(const Shape& shape, const std::string& folder)
{
    const std::string path = folder + "/mirrored.mp4";
    const Matrix matrix = {1, 0, 0, -1};
    writeFile(
        path, withMatrix(movieOf(shape, folder), numbersOf(matrix, shape.recipe.width, shape.recipe.height)));
    const Picture shown = decodedFrame(path, beginning);
    const Picture coded = decodedFrame(path, beginning, Rotation::Ignored);
    std::filesystem::remove(path);
    const bool ignored = meanDifference(shown, coded) < agreement;
    std::cout << "When it decodes, it " << (ignored ? "ignores" : "obeys") << " a mirror." << std::endl;
    return ignored;
}

int fillTable(const std::string& toolsFolder, const std::string& workFolder)
{
    std::filesystem::create_directories(workFolder);
    const std::string encoder = hasEncoder("libx264") ? "libx264" : "mpeg4";
    const std::vector<Shape> shapes = {{"landscape, " + encoder, {192, 128, encoder}},
        {"portrait, " + encoder, {128, 192, encoder}}, {"odd sides, mpeg4", {161, 121, "mpeg4"}}};
    std::cout << ffmpegVersion() << std::endl;
    const bool mirrorsAreLost = ignoresMirrors(shapes.front(), workFolder);
    Tally tally;
    for (const Shape& shape : shapes) {
        const std::string movie = movieOf(shape, workFolder);
        for (const Flag& flag : flags) {
            tally.beginGroup(shape.name + ", " + flag.name, mirrorsAreLost && isMirrored(flag.matrix));
            Group(tally, toolsFolder, workFolder).check(movie, shape, flag);
            tally.endGroup();
        }
    }
    tally.sumUp();
    return tally.isClean() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

} // namespace tarnwell::test

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::cerr << "usage: truthTable TOOLS_FOLDER WORK_FOLDER\n";
        return tarnwell::test::unusable;
    }
    return tarnwell::test::fillTable(argv[1], argv[2]);
}
