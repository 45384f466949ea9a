// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// Starts the installed application of exactly that name with the file and does not wait for it. The name may
/// be the translated or the untranslated one. False if no application has the name or it cannot be started.
/// `path` is the file's absolute path, raw bytes.
bool launchApplication(const std::string& name, const std::string& path);

/// Where this program is the default application for the file's type, starts another application for the type
/// with the file. False if another application is the default, or if none can be started. `ownId` is the id
/// of the program's desktop entry; `path` is the file's absolute path, raw bytes.
bool launchOtherThanOwn(const std::string& ownId, const std::string& path);

} // namespace tarnwell
