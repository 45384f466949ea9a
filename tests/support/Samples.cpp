// SPDX-License-Identifier: MIT
#include "tests/support/Samples.h"

#include "desktop/PathText.h"
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Waiting.h"

#include <QCryptographicHash>
#include <QImageReader>
#include <QProcess>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

const std::string ffmpeg = "/usr/bin/ffmpeg";

constexpr std::chrono::minutes longestRun(5); // for an encoder on a busy machine

std::string drawBox(const std::string& place, const std::string& colour)
{
    return "drawbox=" + place + ":w=iw/4:h=ih/4:t=fill:color=" + colour;
}

std::string pictureFilter()
{
    return drawBox("x=0:y=0", "red") + "," + drawBox("x=iw-iw/4:y=0", "green") + ","
        + drawBox("x=0:y=ih-ih/4", "blue") + "," + drawBox("x=iw-iw/4:y=ih-ih/4", "yellow");
}

/// Without the output.
std::vector<std::string> argumentsFor(const SampleVideo& sample)
{
    const std::string size = std::to_string(sample.size.width()) + "x" + std::to_string(sample.size.height());
    const std::string length = ":duration=" + std::to_string(sample.seconds);
    std::vector<std::string> arguments = {"-v", "error", "-nostdin", "-f", "lavfi", "-i",
        "gradients=size=" + size + ":rate=25:c0=gray:c1=silver:speed=0.01:seed=7" + length};
    if (!sample.soundCodec.empty())
        arguments.insert(
            arguments.end(), {"-f", "lavfi", "-i", "sine=frequency=440" + length, "-c:a", sample.soundCodec});
    arguments.insert(arguments.end(),
        {"-vf", pictureFilter(), "-c:v", sample.codec, "-pix_fmt", sample.pixelFormat, "-g", "5", "-y"});
    return arguments;
}

/// A hash of everything that the sample's bytes depend on.
std::string keyOf(const std::vector<std::string>& arguments)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const auto& argument : arguments)
        hash.addData(QByteArray::fromStdString(argument + "\n"));
    hash.addData(
        QByteArray::number(qint64{std::filesystem::last_write_time(ffmpeg).time_since_epoch().count()}));
    return hash.result().toHex().toStdString();
}

/// The path of the sample in the build folder. Makes it if no test has made it before. Test programs that
/// make the same sample at the same time replace each other's whole file.
std::string keptSample(const std::string& path, std::vector<std::string> arguments)
{
    const std::string folder = TARNWELL_BUILD_FOLDER "/tests/samples/";
    const std::string name = keyOf(arguments) + std::filesystem::path(path).extension().string();
    if (!exists(folder + name)) {
        std::filesystem::create_directories(folder);
        const std::string unfinished = folder + std::to_string(::getpid()) + "-" + name;
        arguments.push_back(unfinished);
        if (run(ffmpeg, arguments) != 0)
            failTest("ffmpeg cannot make " + path);
        std::filesystem::rename(unfinished, folder + name);
    }
    return folder + name;
}

} // namespace

int run(const std::string& program, const std::vector<std::string>& arguments)
{
    QStringList list;
    for (const auto& argument : arguments)
        list.append(textOfPath(argument));
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(textOf(program), list);
    EXPECT_TRUE(waitForEnd(process, longestRun));
    if (process.error() == QProcess::FailedToStart)
        return -2;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

void makeSampleVideo(const std::string& path, const SampleVideo& sample)
{
    const std::string kept = keptSample(path, argumentsFor(sample));
    std::filesystem::copy_file(kept, path, std::filesystem::copy_options::overwrite_existing);
}

void setRotationFlag(const std::string& path, int degrees, const std::string& markedPath)
{
    ASSERT_EQ(run(ffmpeg,
                  {"-v", "error", "-nostdin", "-i", path, "-c", "copy", "-metadata:s:v",
                      "rotate=" + std::to_string(degrees), "-y", markedPath}),
        0);
}

QImage decodedFrame(const std::string& path, double seconds)
{
    return decodedFrames({path}, seconds).front();
}

std::vector<QImage> decodedFrames(const std::vector<std::string>& paths, double seconds)
{
    const TemporaryDirectory folder;
    const auto pictureOf = [&](std::size_t video) { return folder.path() + std::to_string(video) + ".ppm"; };
    std::vector<std::string> arguments = {"-v", "error", "-nostdin"};
    for (const auto& path : paths)
        arguments.insert(arguments.end(), {"-ss", std::to_string(seconds), "-i", path});
    for (std::size_t video = 0; video < paths.size(); ++video)
        arguments.insert(arguments.end(),
            {"-map", std::to_string(video) + ":v:0", "-frames:v", "1", "-y", pictureOf(video)});
    run(ffmpeg, arguments);
    std::vector<QImage> frames;
    for (std::size_t video = 0; video < paths.size(); ++video)
        frames.push_back(
            QImageReader(textOfPath(pictureOf(video))).read().convertToFormat(QImage::Format_RGB32));
    return frames;
}

double meanDifference(const QImage& left, const QImage& right)
{
    constexpr double farthest = 255;
    const QSize common = left.size().boundedTo(right.size());
    const QSize largest = left.size().expandedTo(right.size());
    if (common.isEmpty() || largest.width() - common.width() > 1 || largest.height() - common.height() > 1)
        return farthest;
    double sum = 0;
    for (int y = 0; y < common.height(); ++y) {
        for (int x = 0; x < common.width(); ++x) {
            const QRgb a = left.pixel(x, y);
            const QRgb b = right.pixel(x, y);
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b))
                + std::abs(qBlue(a) - qBlue(b));
        }
    }
    constexpr double channels = 3;
    return sum / (channels * common.width() * common.height());
}

QImage expectedPicture(const QImage& source, int quarterTurnsLeft, bool vertically, bool horizontally)
{
    QImage picture = source.convertToFormat(QImage::Format_ARGB32);
    for (int turn = 0; turn < quarterTurnsLeft; ++turn) {
        QImage turned(picture.height(), picture.width(), QImage::Format_ARGB32);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                turned.setPixel(y, picture.width() - 1 - x, picture.pixel(x, y));
        }
        picture = turned;
    }
    return picture.mirrored(horizontally, vertically);
}

} // namespace tarnwell::test
