// SPDX-License-Identifier: MIT
#include "tests/support/Reports.h"

namespace tarnwell::test
{

std::string reportOf(const VideoReport& facts)
{
    const std::string tags = facts.rotate.empty() ? "" : R"(, "tags": {"rotate": ")" + facts.rotate + R"("})";
    return R"({"streams": [{"index": 0, "codec_name": ")" + facts.codec
        + R"(", "codec_type": "video", "codec_tag_string": "avc1", "avg_frame_rate": "25/1", "width": )"
        + std::to_string(facts.width) + R"(, "height": )" + std::to_string(facts.height) + tags
        + R"(}, {"index": 1, "codec_name": "aac", "codec_type": "audio", "channels": 2}], "format": {"duration": ")"
        + facts.duration + R"("}})";
}

std::string errorReport()
{
    return R"({"error": {"code": -1094995529, "string": "Invalid data found when processing input"}})";
}

std::string soundReport()
{
    return R"({"streams": [{"index": 0, "codec_name": "mp3", "codec_type": "audio"}], "format": {"duration": "3.0"}})";
}

} // namespace tarnwell::test
