#include "fileops/file_copy.h"

#include <algorithm>
#include <cerrno>

#include "platform/file_system.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>

// The bytes of a copy: from one descriptor to another, inside the kernel where it can, holes
// kept as holes, and the finished copy's final name taken without replacing anything.
namespace tidewick {

namespace {

constexpr qint64 kCopyChunk = 8 * 1024 * 1024;
constexpr qint64 kBufferSize = 1024 * 1024;

bool sameTime(const struct timespec& a, const struct timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

Error endedEarly() {
    return {EIO, QStringLiteral("The file ended before its copy was complete")};
}

// Copies `length` bytes at `offset` with read and write, through a buffer.
Result<void> copyThroughBuffer(int in, int out, off_t offset, qint64 length,
                               const CopyProgress& progress) {
    QByteArray buffer(int(std::min(length, kBufferSize)), Qt::Uninitialized);
    while (length > 0) {
        const ssize_t got =
            ::pread(in, buffer.data(), size_t(std::min<qint64>(length, buffer.size())), offset);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return lastError();
        }
        if (got == 0) {
            return endedEarly();
        }
        for (ssize_t written = 0; written < got;) {
            const ssize_t put = ::pwrite(out, buffer.constData() + written, size_t(got - written),
                                         offset + written);
            if (put < 0 && errno != EINTR) {
                return lastError();
            }
            written += std::max<ssize_t>(put, 0);
        }
        offset += got;
        length -= got;
        if (progress) {
            progress(got);
        }
    }
    return {};
}

// Copies `length` bytes at `offset`: inside the kernel where it can (which also lets a file
// system share the blocks), through a buffer where it cannot.
Result<void> copyRange(int in, int out, off_t offset, qint64 length, const CopyProgress& progress) {
#ifdef Q_OS_LINUX
    while (length > 0) {
        off_t from = offset;
        off_t to = offset;
        const ssize_t done =
            ::copy_file_range(in, &from, out, &to, size_t(std::min(length, kCopyChunk)), 0);
        if (done < 0 && errno == EINTR) {
            continue;
        }
        if (done < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL ||
                         errno == EOPNOTSUPP || errno == EPERM)) {
            break;  // the kernel cannot do it here: the buffer does the rest
        }
        if (done < 0) {
            return lastError();
        }
        if (done == 0) {
            return endedEarly();
        }
        offset += done;
        length -= done;
        if (progress) {
            progress(done);
        }
    }
#endif
    return copyThroughBuffer(in, out, offset, length, progress);
}

// Copies the data of `in` (`size` bytes) to `out`; holes stay holes, so a sparse file costs
// only its data. A hole counts as done as soon as it is passed.
Result<void> copyData(int in, int out, qint64 size, const CopyProgress& progress) {
    const auto passHole = [&progress](qint64 length) {
        if (progress && length > 0) {
            progress(length);
        }
    };
    off_t offset = 0;
    while (offset < size) {
        off_t data = ::lseek(in, offset, SEEK_DATA);
        if (data < 0 && errno == ENXIO) {
            break;  // only a hole is left
        }
        off_t hole = data < 0 ? size : ::lseek(in, data, SEEK_HOLE);
        data = std::max<off_t>(data, offset);
        hole = hole < 0 ? size : std::min<off_t>(hole, size);
        passHole(data - offset);
        if (Result<void> copied = copyRange(in, out, data, hole - data, progress); !copied) {
            return copied;
        }
        offset = std::max(hole, data + 1);
    }
    passHole(size - offset);
    // A file that ends in a hole gets its length from the last data on.
    const bool endsInHole = ::lseek(out, 0, SEEK_END) < size;
    return !endsInHole || ::ftruncate(out, size) == 0 ? Result<void>() : lastError();
}

}  // namespace

Error changedWhileCopied() {
    return {EAGAIN, QStringLiteral("The file changed while it was copied")};
}

// Writes the file `source` (described by `info`) under the new name `copy`.
Result<void> writeCopy(const QByteArray& source, const struct stat& info, const QByteArray& copy,
                       const CopyProgress& progress) {
    if (S_ISLNK(info.st_mode)) {
        QByteArray target(int(info.st_size) + 1, Qt::Uninitialized);
        const ssize_t length = ::readlink(source.constData(), target.data(), size_t(target.size()));
        if (length < 0) {
            return lastError();
        }
        if (length != info.st_size) {
            return endedEarly();
        }
        target.truncate(int(length));
        return ::symlink(target.constData(), copy.constData()) == 0 ? Result<void>() : lastError();
    }
    // A link reaches here only when it is to be followed (its stat is then its target's).
    Descriptor in(::open(source.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat opened {};
    if (in.fd < 0 || ::fstat(in.fd, &opened) != 0) {
        return lastError();
    }
    if (!S_ISREG(opened.st_mode)) {
        return Error{EINVAL, QStringLiteral("Not an ordinary file")};
    }
    Descriptor out(::open(copy.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (out.fd < 0) {
        return lastError();
    }
    if (Result<void> copied = copyData(in.fd, out.fd, opened.st_size, progress); !copied) {
        return copied;
    }
    // The copy keeps the file's permissions and times where the target folder's file system
    // can hold them; where it cannot, the data is what counts.
    ::fchmod(out.fd, opened.st_mode & 07777);
    const struct timespec times[2] = {opened.st_atim, opened.st_mtim};
    ::futimens(out.fd, times);
    struct stat after {};
    struct stat written {};
    if (::fstat(in.fd, &after) != 0 || ::fstat(out.fd, &written) != 0) {
        return lastError();
    }
    // A file written to while it was read gives a copy of no moment of it: torn.
    if (after.st_size != opened.st_size || !sameTime(after.st_mtim, opened.st_mtim) ||
        !sameTime(after.st_ctim, opened.st_ctim)) {
        return changedWhileCopied();
    }
    if (written.st_size != opened.st_size) {
        return Error{EIO, QStringLiteral("The copy's size differs from the file's")};
    }
    return out.close() ? Result<void>() : lastError();
}

// Gives `from` the name `to` unless a file has that name: never replaces. Where the file system
// has no such rename, a hard link does the same, as the first of two names to take a file wins.
Result<void> renameNoReplace(const QByteArray& from, const QByteArray& to) {
    const auto taken = [] {
        return Error{EEXIST, QStringLiteral("A file of that name appeared in the target folder")};
    };
#ifdef Q_OS_LINUX
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno == EEXIST) {
        return taken();
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return lastError();
    }
#endif
    if (::link(from.constData(), to.constData()) == 0) {
        ::unlink(from.constData());
        return {};
    }
    return errno == EEXIST ? taken() : lastError();
}

}  // namespace tidewick

#endif
