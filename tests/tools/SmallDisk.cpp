// SPDX-License-Identifier: MIT
#include "tests/tools/SmallDisk.h"

#include <chrono>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <thread>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

// Root needs a mount namespace only; other users need a user namespace, too.
bool hasOwnMounts()
{
    static const bool hasThem = [] {
        return (::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0)
            && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    }();
    return hasThem;
}

} // namespace

SmallDisk::SmallDisk(const std::string& folder, int kibibytes)
    : m_folder(folder)
{
    const std::string size = "size=" + std::to_string(kibibytes) + "k";
    m_isThere = hasOwnMounts() && ::mount("tmpfs", m_folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

SmallDisk::~SmallDisk()
{
    if (m_isThere)
        ::umount2(m_folder.c_str(), MNT_DETACH);
}

bool SmallDisk::becomesFree() const
{
    constexpr int most = 5000;
    for (int attempt = 0; attempt < most; ++attempt) {
        struct statvfs room = {};
        if (::statvfs(m_folder.c_str(), &room) == 0 && room.f_bfree == room.f_blocks)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
}

bool SmallDisk::makeReadOnly() const
{
    return ::mount(nullptr, m_folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

} // namespace tarnwell::test
