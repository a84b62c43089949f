#include "user_folders.h"

#include <glib.h>

UserFolders UserFolders::OfUser()
{
    const std::string own = "/quilp";
    return {g_get_user_config_dir() + own, g_get_user_data_dir() + own,
            g_get_user_state_dir() + own};
}
