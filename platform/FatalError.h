// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace tarnwell
{

/// Ends the program at once with SIGABRT and prints nothing. The one answer to a programming error: a
/// connection, a value or a contract that the code relies on is not there.
[[noreturn]] void fatalError() noexcept;

/// What an optional or a pointer holds; stops the program where it holds nothing.
template <typename Holder>
decltype(auto) required(Holder&& holder)
{
    if (!static_cast<bool>(holder))
        fatalError();
    return *std::forward<Holder>(holder);
}

} // namespace tarnwell
