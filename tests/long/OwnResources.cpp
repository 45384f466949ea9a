// SPDX-License-Identifier: MIT
#include "tests/long/OwnResources.h"

#include "tests/support/Files.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

/// The number in a line such as "VmRSS:   1234 kB" of the text; 0 if there is no line with that label.
std::size_t numberBehind(const std::string& label, const std::string& text)
{
    const auto place = text.find("\n" + label + ":");
    return place == std::string::npos ? 0 : std::stoul(text.substr(place + label.size() + 2));
}

std::size_t childrenOf(pid_t parent)
{
    const auto names = namesIn("/proc");
    return static_cast<std::size_t>(
        std::count_if(names.begin(), names.end(), [parent](const std::string& name) {
            return std::isdigit(static_cast<unsigned char>(name.front())) != 0
                && numberBehind("PPid", contentsOf("/proc/" + name + "/status"))
                == static_cast<std::size_t>(parent);
        }));
}

} // namespace

OwnResources ownResources()
{
    const std::string status = contentsOf("/proc/self/status");
    return {namesIn("/proc/self/fd").size(), numberBehind("Threads", status), childrenOf(::getpid()),
        numberBehind("VmRSS", status)};
}

} // namespace tarnwell::test
