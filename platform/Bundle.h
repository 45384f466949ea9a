// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwell
{

/// Locates the application's resources relative to its executable: tools in ../libexec/tarnwell, pictures in
/// ../share/tarnwell, and either in the executable's own folder. The build tree and an installed tree have
/// the same layout.
class Bundle
{
public:
    /// `executableFolder`: absolute path of the executable's folder, without a trailing slash.
    explicit Bundle(std::string executableFolder);

    /// The bundle of the running program.
    static Bundle main();

    /// Returns the path of the resource with exactly this name; empty if there is no such file.
    std::optional<std::string> pathForResource(std::string_view name) const;

    /// The same for a PNG picture. `name` excludes the extension.
    std::optional<std::string> pathForImageResource(std::string_view name) const;

private:
    std::string m_executableFolder;
};

} // namespace tarnwell
