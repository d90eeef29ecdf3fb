#pragma once

#include <QString>

// What every Tidewick program sets up before it touches the disk.
namespace tidewick {

/// Makes the process safe for the file engine: a write past the file-size limit fails with an
/// error instead of killing the process (SIGXFSZ), and a relative XDG_DATA_HOME,
/// XDG_CONFIG_HOME or XDG_CACHE_HOME is ignored, as the freedesktop base-directory rules say, so
/// that no trash, settings or cache is made under the current folder. The threads that share
/// work among the cores are made now (startCoreHelpers), ahead of the first work.
void prepareProcess();

/// The user's data folder by the freedesktop rules ($XDG_DATA_HOME, else ~/.local/share); empty
/// when neither it nor HOME is an absolute path.
QString userDataFolder();

}  // namespace tidewick
