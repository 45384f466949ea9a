// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// The location of a file. Keeps the path's bytes as they are, whatever their encoding.
class FileURL
{
public:
    /// A relative path is taken from the current directory; nothing else about it is changed.
    explicit FileURL(const std::string& path);

    /// The absolute path, raw bytes.
    const std::string& path() const { return m_path; }

    /// What follows the last "." of the last path component; empty where that holds none.
    std::string pathExtension() const;

    /// "file://" and the path, every byte but the unreserved ones percent-encoded.
    std::string absoluteString() const;

    bool operator==(const FileURL&) const = default;

private:
    std::string m_path;
};

/// The text with its ASCII letters in lower case.
std::string lowerCased(std::string text);

} // namespace tarnwell
