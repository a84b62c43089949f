#include "user_folders.h"

#include <glib.h>

UserFolders UserFolders::OfUser()
{
    const std::string subfolder = "/quilp";
    return {g_get_user_config_dir() + subfolder, g_get_user_data_dir() + subfolder,
            g_get_user_state_dir() + subfolder};
}
