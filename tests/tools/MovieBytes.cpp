// SPDX-License-Identifier: MIT
#include "tests/tools/MovieBytes.h"

namespace tarnwell::test
{

std::string bigEndian(std::uint64_t number, int bytes)
{
    constexpr int bytesOfNumber = sizeof number; // and zeros before them
    std::string text;
    for (int place = bytes - 1; place >= 0; --place)
        text += place < bytesOfNumber ? static_cast<char>(number >> (8 * place) & 0xFFU) : '\0';
    return text;
}

std::string box(const std::string& type, const std::string& content)
{
    return bigEndian(content.size() + 8, 4) + type + content;
}

std::string longBox(const std::string& type, const std::string& content)
{
    return bigEndian(1, 4) + type + bigEndian(content.size() + 16, 8) + content;
}

std::string trackHeader(int version, int width, int height)
{
    const int timeSize = version == 1 ? 8 : 4;
    std::string content = bigEndian(static_cast<std::uint64_t>(version), 1) + bigEndian(7, 3); // and flags
    content += bigEndian(1, timeSize) + bigEndian(2, timeSize); // made, changed
    content += bigEndian(1, 4) + bigEndian(0, 4) + bigEndian(4000, timeSize); // number, duration
    content += bigEndian(0, 8) + bigEndian(0, 8); // layer and volume
    const std::string one = bigEndian(65536, 4);
    const std::string none = bigEndian(0, 4);
    content += one + none + none + none + one + none + none + none + bigEndian(1073741824, 4);
    content += bigEndian(static_cast<std::uint64_t>(width) << 16U, 4);
    return box("tkhd", content + bigEndian(static_cast<std::uint64_t>(height) << 16U, 4));
}

std::string track(const std::string& handler, int version, int width, int height)
{
    const std::string handlerBox
        = box("hdlr", bigEndian(0, 8) + handler + bigEndian(0, 12) + std::string("name", 5));
    const std::string media = box("mdia", box("mdhd", bigEndian(0, 24)) + handlerBox + box("minf", ""));
    return box("trak", trackHeader(version, width, height) + box("edts", "") + media);
}

std::string smallMovie()
{
    return box("ftyp", "isom" + bigEndian(512, 4) + "isommp41") + box("mdat", std::string(100, 'd'))
        + box("moov", box("mvhd", bigEndian(0, 100)) + track("vide") + track("soun", 0, 0, 0));
}

std::string matrixIn(const std::string& file, std::size_t header)
{
    constexpr std::size_t boxHeader = 8;
    constexpr std::size_t matrixSize = 36;
    const bool isLong = file[header + boxHeader] == 1;
    return file.substr(header + boxHeader + (isLong ? 52 : 40), matrixSize);
}

} // namespace tarnwell::test
