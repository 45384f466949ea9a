// SPDX-License-Identifier: MIT
#include "tests/tools/RealTools.h"

namespace tarnwell::test
{

void RealTools::makeVideo(const std::string& path, const std::string& source, const Words& options) const
{
    const Words input = {"-v", "error", "-nostdin", "-f", "lavfi", "-i", source};
    ASSERT_EQ(runTool(realFfmpeg, joined(joined(input, options), {"-y", "file:" + path})), 0);
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

nlohmann::json RealTools::report(const std::string& path, const std::string& program)
{
    ToolProcess process(program, probeCommand(path));
    EXPECT_EQ(process.wait(), 0);
    return nlohmann::json::parse(process.output());
}

} // namespace tarnwell::test
