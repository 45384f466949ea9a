// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// Starts the installed application of exactly that name with the file and does not wait for it. The name may
/// be the translated or the untranslated one. False if no application has the name or it cannot be started.
/// `path` is the file's absolute path, raw bytes.
bool launchApplication(const std::string& name, const std::string& path);

} // namespace tarnwell
