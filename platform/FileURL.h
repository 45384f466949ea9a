// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tarnwell
{

/// The absolute location of a file. The path is raw bytes of any encoding and is never normalised.
class FileURL
{
public:
    /// Resolves a relative path against the current directory.
    explicit FileURL(const std::string& path);

    /// Absolute.
    const std::string& path() const { return m_path; }

    /// The text behind the last "." of the last path component; empty without a ".".
    std::string pathExtension() const;

    /// "file://" and the path. Percent-encodes every byte but "/" and the unreserved ones (RFC 3986).
    std::string absoluteString() const;

    bool operator==(const FileURL&) const = default;

private:
    std::string m_path;
};

/// The last component of a path that is not empty: "clip.vob" of "/videos/clip.vob/". Empty for "" and "/".
std::string lastPathComponent(std::string_view path);

/// Converts ASCII letters to lower case; all other bytes stay.
std::string lowerCased(std::string text);

} // namespace tarnwell
