// SPDX-License-Identifier: MIT
#include "platform/FileURL.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace tarnwell
{

namespace
{

bool isUnreserved(char byte)
{
    constexpr std::string_view marks = "-._~/";
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9')
        || marks.find(byte) != std::string_view::npos;
}

std::string absolutePath(const std::string& path)
{
    std::error_code error;
    // The operator ignores its left side if the right one is absolute.
    return (std::filesystem::current_path(error) / path).string();
}

} // namespace

FileURL::FileURL(const std::string& path)
    : m_path(absolutePath(path))
{
}

std::string FileURL::pathExtension() const
{
    const std::string component = lastPathComponent(m_path);
    const auto dot = component.rfind('.');
    if (dot == std::string::npos)
        return {};
    return component.substr(dot + 1);
}

std::string FileURL::absoluteString() const
{
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string text = "file://";
    for (const char byte : m_path) {
        if (isUnreserved(byte)) {
            text += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        text += '%';
        text += hexDigits[value >> 4U];
        text += hexDigits[value & 0xFU];
    }
    return text;
}

std::string lastPathComponent(std::string_view path)
{
    path = path.substr(0, path.find_last_not_of('/') + 1);
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string lowerCased(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

} // namespace tarnwell
