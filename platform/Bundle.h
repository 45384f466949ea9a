// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwell
{

/// The files that belong to the application and stand around its executable: the tools in
/// ../libexec/tarnwell, the pictures in ../share/tarnwell, or either beside it. The build tree and an
/// installed tree look alike.
class Bundle
{
public:
    /// `executableFolder`: the folder that holds the executable, absolute, without a closing slash.
    explicit Bundle(std::string executableFolder);

    /// The bundle of the running program.
    static Bundle main();

    /// The path of the resource of exactly that name; nothing where no such file stands.
    std::optional<std::string> pathForResource(std::string_view name) const;

    /// The path of the picture of that name, given without its extension.
    std::optional<std::string> pathForImageResource(std::string_view name) const;

private:
    std::string m_executableFolder;
};

} // namespace tarnwell
