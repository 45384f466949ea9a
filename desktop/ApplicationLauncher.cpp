// SPDX-License-Identifier: MIT
#include "desktop/ApplicationLauncher.h"

#include "desktop/GioPointer.h"

#include <gio/gdesktopappinfo.h>

namespace tarnwell
{

namespace
{

bool isNamed(GAppInfo* application, const std::string& name)
{
    if (name == g_app_info_get_name(application))
        return true;
    const GlibText untranslated(
        g_desktop_app_info_get_string(G_DESKTOP_APP_INFO(application), G_KEY_FILE_DESKTOP_KEY_NAME));
    return untranslated && name == untranslated.get();
}

/// Null if no application has the name. Hidden entries, and entries whose program is not installed, are
/// ignored.
ObjectPointer<GAppInfo> applicationNamed(const std::string& name)
{
    ObjectPointer<GAppInfo> found;
    GList* const applications = g_app_info_get_all();
    for (const GList* item = applications; item != nullptr && !found; item = item->next) {
        auto* application = static_cast<GAppInfo*>(item->data);
        if (isNamed(application, name))
            found.reset(static_cast<GAppInfo*>(g_object_ref(application)));
    }
    g_list_free_full(applications, g_object_unref);
    return found;
}

bool hasId(GAppInfo* application, const std::string& id)
{
    const char* const ownId = g_app_info_get_id(application);
    return ownId != nullptr && id == ownId;
}

/// From the name of the file, as desktops choose the application.
GlibText typeOf(const std::string& path)
{
    return GlibText(g_content_type_guess(path.c_str(), nullptr, 0, nullptr));
}

bool launchWithFile(GAppInfo* application, const std::string& path)
{
    const ObjectPointer<GFile> file(g_file_new_for_path(path.c_str()));
    GList files = {file.get(), nullptr, nullptr};
    return g_app_info_launch(application, &files, nullptr, nullptr) != FALSE;
}

} // namespace

bool launchApplication(const std::string& name, const std::string& path)
{
    const ObjectPointer<GAppInfo> application = applicationNamed(name);
    if (!application)
        return false;
    return launchWithFile(application.get(), path);
}

bool launchOtherThanOwn(const std::string& ownId, const std::string& path)
{
    const auto type = typeOf(path);
    const ObjectPointer<GAppInfo> chosen(g_app_info_get_default_for_type(type.get(), FALSE));
    if (!chosen || !hasId(chosen.get(), ownId))
        return false;
    bool isLaunched = false;
    GList* const applications = g_app_info_get_all_for_type(type.get());
    for (const GList* item = applications; item != nullptr && !isLaunched; item = item->next) {
        auto* application = static_cast<GAppInfo*>(item->data);
        isLaunched = !hasId(application, ownId) && launchWithFile(application, path);
    }
    g_list_free_full(applications, g_object_unref);
    return isLaunched;
}

} // namespace tarnwell
