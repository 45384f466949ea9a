// SPDX-License-Identifier: MIT
#include "tests/tools/RealTools.h"

#include <filesystem>

namespace tarnwell::test
{

void RealTools::makeVideo(const std::string& path, const std::string& source, const Words& options) const
{
    runFfmpeg(joined(joined({"-f", "lavfi", "-i", source}, options), {"-y", "file:" + path}));
}

QImage RealTools::still(const std::string& path, const std::string& position) const
{
    EXPECT_EQ(creator(stillCommand(position, path, at("still.jpg"))), 0);
    return imageAt(at("still.jpg"));
}

QImage RealTools::imageAt(const std::string& path)
{
    return QImage(QString::fromStdString(path));
}

std::vector<QImage> RealTools::shownFrames(const Words& videos, const std::string& position) const
{
    Words inputs;
    Words outputs;
    Words pictures;
    for (const auto& video : videos) {
        const std::string number = std::to_string(pictures.size());
        pictures.push_back(at("shown" + number + ".bmp"));
        if (!position.empty())
            inputs = joined(inputs, {"-ss", position});
        inputs = joined(inputs, {"-threads", "1", "-i", "file:" + video});
        outputs = joined(outputs, {"-map", number + ":v:0", "-frames:v", "1", "-y", pictures.back()});
    }
    runFfmpeg(joined(inputs, outputs));
    std::vector<QImage> frames;
    for (const auto& picture : pictures) {
        frames.push_back(imageAt(picture));
        std::filesystem::remove(picture);
    }
    return frames;
}

void RealTools::runFfmpeg(const Words& options)
{
    ASSERT_EQ(runTool(realFfmpeg, joined({"-v", "error", "-nostdin"}, options)), 0);
}

nlohmann::json RealTools::report(const std::string& path, const std::string& program)
{
    ToolProcess process(program, probeCommand(path));
    EXPECT_EQ(process.wait(), 0);
    return nlohmann::json::parse(process.output());
}

} // namespace tarnwell::test
