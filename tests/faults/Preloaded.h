// SPDX-License-Identifier: MIT
// For the LD_PRELOAD libraries that replace system calls.
#pragma once

#include <cerrno>
#include <dlfcn.h>

/// The function of that name in the C library.
template <typename Function>
Function real(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/// The result of a system call that fails with that error.
inline int failing(int error)
{
    errno = error;
    return -1;
}
