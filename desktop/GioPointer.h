// SPDX-License-Identifier: MIT
#pragma once

#include <gio/gio.h>
#include <memory>
#include <type_traits>

namespace tarnwell
{

/// A reference to an object of GIO that the destructor releases.
template <typename Object>
using ObjectPointer
    = std::unique_ptr<Object, std::integral_constant<decltype(&g_object_unref), g_object_unref>>;

/// A text that GLib has allocated.
using GlibText = std::unique_ptr<char, std::integral_constant<decltype(&g_free), g_free>>;

} // namespace tarnwell
