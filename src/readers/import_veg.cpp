#include "readers/import_veg.h"

#include <algorithm>
#include <cstring>

#include "platform/session_text.h"
#include "readers/session_bytes.h"

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

    void run() {
        while (o_ < size_) {
            // Every byte that is no mark only moves the position on by one, so the scan may leap
            // to the next byte that could begin one.
            o_ = nextMark(o_);
            if (o_ >= size_) {
                return;
            }
            if (static_cast<unsigned char>(data_[o_]) == 0xFF) {
                const std::optional<qint32> value = readI32LE(bytes_, o_);
                if (!value) {
                    return;
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
                    return;
                }
                lastIsZero_ = false;  // the last text is now the four tag characters
                const bool end = bytes_.sliced(o_, 4) == kEndTag;
                o_ += 4;
                if (end) {
                    return;
                }
            }
            if (runs_ >= kRunsBeforeRecords && armed_) {
                armed_ = false;
                o_ += kTypeOffset;
                const std::optional<qint32> type = readI32LE(bytes_, o_);
                if (!type) {
                    return;
                }
                // Any other type value leaves the position at its first byte, where the scan
                // goes on.
                if (*type == 1 || *type == 2) {
                    o_ += kPathAfterType;
                    if (!readPath()) {
                        return;
                    }
                }
            }
        }
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
    VegScan(bytes, paths).run();
    SessionRead read;
    read.paths = paths.takePaths();
    return read;
}

}  // namespace tidewick
