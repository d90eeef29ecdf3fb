#include "readers/import_veg.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/session_text.h"

namespace tidewick {

namespace {

// Only whether four runs have been seen matters; counting stops there, so no file of any size
// can make the count overflow.
constexpr int kRunsBeforeRecords = 4;
// After the run, 4 ignored bytes, then the type value, then 36 more bytes before the path.
constexpr qsizetype kTypeOffset = 4;
constexpr qsizetype kPathAfterType = 40;
constexpr QByteArrayView kEndTag = "list";

// Whether the bytes of a path read as UTF-16LE text. Vegas stores paths that way, so every
// ASCII character of one (a separator, a colon, a dot) has a zero high byte. A path of 8-bit
// characters has no zero inside and only ends with one, which pairs with its last character:
// so the test asks for an ASCII unit before the last.
bool isUtf16Text(QByteArrayView raw) {
    if (raw.isEmpty() || raw.size() % 2 != 0) {
        return false;
    }
    const auto* p = reinterpret_cast<const unsigned char*>(raw.data());
    const qsizetype units = raw.size() / 2;
    auto unitAt = [p](qsizetype i) { return char16_t(p[2 * i] | p[2 * i + 1] << 8); };
    bool asciiBeforeLast = false;
    for (qsizetype i = 0; i < units; ++i) {
        const char16_t unit = unitAt(i);
        if (unit == 0) {
            return false;
        }
        if (unit < 0x80) {
            asciiBeforeLast = asciiBeforeLast || i + 1 < units;
        } else if (QChar::isHighSurrogate(unit)) {
            if (i + 1 == units || !QChar::isLowSurrogate(unitAt(i + 1))) {
                return false;
            }
            ++i;
        } else if (QChar::isLowSurrogate(unit)) {
            return false;
        }
    }
    return asciiBeforeLast;
}

// One scan over a project held in memory. Each step either moves the position on or ends the
// scan, and every read that would leave the file ends it, so any bytes end in linear time.
class VegScan {
public:
    VegScan(QByteArrayView bytes, MediaPathList& paths)
        : data_(bytes.data()), size_(bytes.size()), bytes_(bytes), paths_(paths) {}

    /// Scans the whole file; true when it holds one of the marks at all.
    bool run() {
        while (o_ < size_) {
            // Every byte that is no mark only moves the position on by one, so the scan may leap
            // to the next byte that could begin one.
            o_ = nextMark(o_);
            if (o_ >= size_) {
                return runs_ > 0;
            }
            if (static_cast<unsigned char>(data_[o_]) == 0xFF) {
                const std::optional<qint32> value = readI32LE(bytes_, o_);
                if (!value) {
                    return runs_ > 0;
                }
                if (*value == -1) {
                    runs_ = std::min(runs_ + 1, kRunsBeforeRecords);
                    o_ += 4;
                    armed_ = true;
                } else {
                    ++o_;
                }
            } else {
                // An "l" once four runs have been seen: a four-byte tag test.
                if (o_ > size_ - 4) {
                    return runs_ > 0;
                }
                lastIsZero_ = false;  // the last text is now the four tag characters
                const bool end = bytes_.sliced(o_, 4) == kEndTag;
                o_ += 4;
                if (end) {
                    return runs_ > 0;
                }
            }
            if (runs_ >= kRunsBeforeRecords && armed_) {
                armed_ = false;
                o_ += kTypeOffset;
                const std::optional<qint32> type = readI32LE(bytes_, o_);
                if (!type) {
                    return runs_ > 0;
                }
                // Any other type value leaves the position at its first byte, where the scan
                // goes on.
                if (*type == 1 || *type == 2) {
                    o_ += kPathAfterType;
                    if (!readPath()) {
                        return runs_ > 0;
                    }
                }
            }
        }
        return runs_ > 0;
    }

private:
    qsizetype find(char c, qsizetype from) const {
        const void* hit = std::memchr(data_ + from, c, size_t(size_ - from));
        return hit ? static_cast<const char*>(hit) - data_ : size_;
    }

    // The first position from `from` on that holds 0xFF, or, once four runs have been seen, an
    // "l". The positions found last time are kept while they lie ahead, so no stretch of the
    // file is searched twice.
    qsizetype nextMark(qsizetype from) {
        if (nextRun_ < from) {
            nextRun_ = find('\xFF', from);
        }
        if (runs_ < kRunsBeforeRecords) {
            return nextRun_;
        }
        if (nextTag_ < from) {
            nextTag_ = find('l', from);
        }
        return std::min(nextRun_, nextTag_);
    }

    // A path runs up to two zero bytes in a row. The zero before the first byte counts too: the
    // last character read, by a path or a tag test, carries over, so after a path that ended
    // with two zeros a path that begins with a zero is empty.
    bool readPath() {
        const qsizetype start = o_;
        for (;;) {
            if (o_ >= size_) {
                // A path that the end of the file cuts short is not a name the project holds.
                return false;
            }
            const char b = data_[o_++];
            if (lastIsZero_ && b == 0) {
                break;
            }
            lastIsZero_ = b == 0;
        }
        const QString path = vegPathText(bytes_.sliced(start, o_ - 1 - start));
        // An empty path names no file; it would only put a blank line into the used list.
        if (!path.isEmpty()) {
            paths_.appendUnique(path);
        }
        return true;
    }

    const char* data_;
    qsizetype size_;
    QByteArrayView bytes_;
    MediaPathList& paths_;
    qsizetype o_ = 0;
    int runs_ = 0;
    bool armed_ = false;
    bool lastIsZero_ = false;
    qsizetype nextRun_ = -1;
    qsizetype nextTag_ = -1;
};

// The chunk tree of a project: each chunk is a 16-byte GUID and a 64-bit little-endian size
// that counts its 24-byte header. A "riff" or "list" chunk holds a 16-byte form GUID and then
// child chunks; a media-file chunk's data begins with the 64-bit offset, from the start of the
// data, of the file's path in UTF-16LE, ended by a zero character. The walk keeps its own stack,
// so no nesting of a hostile file can exhaust the program's. A project checks out when its
// chunks fill each parent exactly, down to the end of the file; one cut short or damaged has a
// chunk that runs past its parent, or a root larger than the file.
class VegChunkWalk {
public:
    enum class Tree { None, Broken, Whole };

    VegChunkWalk(QByteArrayView bytes, MediaPathList& paths) : bytes_(bytes), paths_(paths) {}

    /// Reads every media-file chunk's path in file order; None when the file does not begin as
    /// a chunk tree, Broken when it begins as one that does not check out to its end.
    Tree run() {
        if (!isContainer(0)) {
            return Tree::None;
        }
        if (chunkSize(0) != quint64(bytes_.size())) {
            return Tree::Broken;
        }
        struct Level {
            qsizetype pos, end;
        };
        std::vector<Level> levels{{kHeader + kFormGuid, bytes_.size()}};
        while (!levels.empty()) {
            const Level level = levels.back();
            if (level.pos == level.end) {
                levels.pop_back();
                continue;
            }
            const quint64 size = level.end - level.pos >= kHeader ? chunkSize(level.pos) : 0;
            if (size < kHeader || size > quint64(level.end - level.pos)) {
                return Tree::Broken;
            }
            const qsizetype chunk = level.pos;
            const qsizetype chunkEnd = chunk + qsizetype(size);
            levels.back().pos = chunkEnd;
            if (isContainer(chunk) && size >= kHeader + kFormGuid) {
                levels.push_back({chunk + kHeader + kFormGuid, chunkEnd});
            } else if (bytes_.sliced(chunk, kGuid) == kMediaFileGuid) {
                readPath(chunk + kHeader, chunkEnd);
            }
        }
        return Tree::Whole;
    }

private:
    static constexpr qsizetype kGuid = 16;
    static constexpr qsizetype kHeader = 24;
    static constexpr qsizetype kFormGuid = 16;
    static constexpr QByteArrayView kMediaFileGuid{
        "\x5d\x2d\x8f\xb2\x0f\x23\xd2\x11\x86\xaf\x00\xc0\x4f\x8e\xdb\x8a", kGuid};
    static constexpr QByteArrayView kContainerTail{"\xcf\x11\xa5\xd6\x28\xdb\x04\xc1\x00\x00", 10};

    quint64 chunkSize(qsizetype pos) const { return readU64LE(pos + kGuid); }

    quint64 readU64LE(qsizetype pos) const {
        if (pos < 0 || pos > bytes_.size() - 8) {
            return 0;
        }
        quint64 value = 0;
        for (int i = 7; i >= 0; --i) {
            value = value << 8 | static_cast<unsigned char>(bytes_[pos + i]);
        }
        return value;
    }

    bool isContainer(qsizetype pos) const {
        if (pos > bytes_.size() - kHeader) {
            return false;
        }
        const QByteArrayView guid = bytes_.sliced(pos, kGuid);
        return (guid.startsWith("riff") || guid.startsWith("list")) &&
               guid.sliced(kGuid - kContainerTail.size()) == kContainerTail;
    }

    // The path at the offset that the data's first 8 bytes give, up to its zero character or
    // the chunk's end, whichever comes first.
    void readPath(qsizetype data, qsizetype chunkEnd) {
        if (chunkEnd - data < 8) {
            return;
        }
        const quint64 offset = readU64LE(data);
        if (offset >= quint64(chunkEnd - data)) {
            return;
        }
        QString path;
        for (qsizetype at = data + qsizetype(offset); at + 1 < chunkEnd; at += 2) {
            const char16_t unit = char16_t(static_cast<unsigned char>(bytes_[at]) |
                                           static_cast<unsigned char>(bytes_[at + 1]) << 8);
            if (unit == 0) {
                break;
            }
            path.append(QChar(unit));
        }
        if (!path.isEmpty()) {
            paths_.appendUnique(path);
        }
    }

    QByteArrayView bytes_;
    MediaPathList& paths_;
};

}  // namespace

QString vegPathText(QByteArrayView raw) {
    QByteArrayView units = raw;
    if (units.size() % 2 != 0 && units.back() == 0) {
        // A UTF-16 path whose last character has a non-zero high byte brings the first zero of
        // its end mark along.
        units.chop(1);
    }
    if (isUtf16Text(units)) {
        QString text(units.size() / 2, Qt::Uninitialized);
        const auto* p = reinterpret_cast<const unsigned char*>(units.data());
        for (qsizetype i = 0; i < text.size(); ++i) {
            text[i] = QChar(char16_t(p[2 * i] | p[2 * i + 1] << 8));
        }
        return text;
    }
    QByteArray kept;
    kept.reserve(raw.size());
    for (const char c : raw) {
        if (c != 0) {
            kept.append(c);
        }
    }
    return decodeSessionText(kept);
}

SessionRead readVegSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    MediaPathList paths;
    const VegChunkWalk::Tree tree = VegChunkWalk(bytes, paths).run();
    SessionRead read;
    if (tree == VegChunkWalk::Tree::Broken) {
        // A project cut short or damaged: what its lost chunks used is unknown.
        read.outcome = ReaderOutcome::Failed;
        read.problem = cutShortProblem(SessionKindId::Veg, QStringLiteral("chunk"));
        return read;
    }
    // What the scan finds besides: nothing more for a well-formed project, everything for a
    // file that is no chunk tree.
    const bool scanFound = VegScan(bytes, paths).run();
    if (tree == VegChunkWalk::Tree::None && !scanFound) {
        // Neither a chunk tree nor the scan's marks: an empty, truncated or foreign file. Read
        // as a project without media, it would offer the whole folder for moving.
        read.outcome = ReaderOutcome::Rejected;
        read.problem =
            ReadProblem{ReadFailure::NotThisKind, SessionKindId::Veg, ReadSeverity::Error, {}, {}};
        return read;
    }
    read.paths = paths.takePaths();
    return read;
}

}  // namespace tidewick
