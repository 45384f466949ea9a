// SPDX-License-Identifier: MIT
// For the LD_PRELOAD libraries that replace system calls.
#pragma once

#include <cerrno>
#include <dlfcn.h>

/// The next function of that name: that of another preloaded library or of the C library. Static, because a
/// function that preloaded libraries shared would search behind the first of them only.
template <typename Function>
static Function real(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/// The result of a system call that fails with that error.
inline int failing(int error)
{
    errno = error;
    return -1;
}
