#pragma once

#include <QByteArray>

#include "fileops/disk_types.h"
#include "platform/result.h"

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

// The system calls behind the file engine's copies on Linux and macOS.
namespace tidewick {

/// Closes its descriptor when it goes.
struct Descriptor {
    int fd = -1;
    explicit Descriptor(int descriptor) : fd(descriptor) {}
    ~Descriptor() {
        if (fd >= 0) {
            ::close(fd);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    // Closes now, where a failure to write the last data back still shows.
    bool close() { return ::close(std::exchange(fd, -1)) == 0; }
};

/// The failure of a copy whose source changed (size or time of change) while it was read.
Error changedWhileCopied();

/// Writes the file `source` (described by `info`: a link's own stat, or its target's when it is
/// to be followed) under the new name `copy`: a link as a link, a file's data (holes kept) with
/// its permissions and times. The copy must come out at the source's size, and the source must
/// keep its size and time of change throughout (changedWhileCopied).
Result<void> writeCopy(const QByteArray& source, const struct stat& info, const QByteArray& copy,
                       const CopyProgress& progress);

/// Gives `from` the name `to` unless a file has that name: never replaces.
Result<void> renameNoReplace(const QByteArray& from, const QByteArray& to);

}  // namespace tidewick

#endif
