// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace tarnwell
{

/// Ends the program at once with SIGABRT and prints nothing. For programming errors: an unconnected outlet, a
/// missing value, a broken precondition.
[[noreturn]] void fatalError() noexcept;

/// Returns the value of an optional or a pointer. Stops the program if it is empty.
template <typename Holder>
decltype(auto) required(Holder&& holder)
{
    if (!static_cast<bool>(holder))
        fatalError();
    return *std::forward<Holder>(holder);
}

} // namespace tarnwell
