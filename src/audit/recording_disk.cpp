#include "audit/recording_disk.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "text/path_text.h"

namespace tidewick {

namespace {

// The questions a folder's audit asks of the disk.
enum Question : char {
    kFileExists = 'e',
    kFolderExists = 'd',
    kFileSize = 's',
    kListFiles = 'l',
    kListFolders = 'f',
    kListContents = 'a',
    kFileStamp = 't',
    kFileIds = 'i',
    kCurrentDirectory = 'c',
    kFolderReadable = 'r',
};

// The bytes of answers, as the hash takes them in: each value's own bytes, a text after its
// length. Nothing here outlives the run that wrote it but the hash. A listing's answer is
// thousands of values: each is copied in place, the room made ahead.
class Answer {
public:
    template <typename T>
    Answer& operator<<(T value) {
        static_assert(std::is_arithmetic_v<T>);
        put(&value, sizeof value);
        return *this;
    }
    Answer& operator<<(const QString& text) {
        *this << text.size();
        put(text.utf16(), text.size() * 2);
        return *this;
    }
    /// A listing's entry in few bytes, as the hash takes in every one: a byte of flags (a link;
    /// a name of UTF-16 units rather than ASCII bytes; the device following, where it is not the
    /// one before, `device`), the name's length and its bytes, the size, the inode.
    void putEntry(const FolderEntry& entry, quint64& device) {
        const bool ascii = QtPrivate::isAscii(QStringView(entry.name));
        const bool newDevice = entry.id.device != device;
        *this << quint8((entry.isLink ? 1 : 0) | (ascii ? 0 : 2) | (newDevice ? 4 : 0))
              << quint16(entry.name.size());
        if (ascii) {
            const qsizetype at = size_;
            put(nullptr, entry.name.size());
            std::transform(entry.name.cbegin(), entry.name.cend(), bytes_.data() + at,
                           [](QChar c) { return char(c.unicode()); });
        } else {
            put(entry.name.utf16(), entry.name.size() * 2);
        }
        *this << entry.size;
        if (newDevice) {
            *this << entry.id.device;
            device = entry.id.device;
        }
        *this << entry.id.inode;
    }
    QByteArrayView bytes() const { return {bytes_.constData(), size_}; }
    void reserve(qsizetype size) {
        if (size > bytes_.size()) {
            bytes_.resize(size);
        }
    }

private:
    void put(const void* data, qsizetype size) {
        if (size_ + size > bytes_.size()) {
            reserve(std::max(size_ + size, 2 * bytes_.size()));
        }
        if (data != nullptr) {
            std::memcpy(bytes_.data() + size_, data, size_t(size));
        }
        size_ += size;
    }

    QByteArray bytes_;  // room, of which the first `size_` bytes are written
    qsizetype size_ = 0;
};

// A question as the record keeps it: its kind, the length of its path and the path.
QByteArray question(char kind, const QString& path) {
    QByteArray bytes(1, kind);
    return bytes.append((Answer() << path).bytes());
}

template <typename T>
void hashAnswer(char kind, const QString& path, const T& value, QCryptographicHash& hash) {
    Answer answer;
    answer << kind << path;
    const auto addFiles = [&answer](const QList<FolderEntry>& files) {
        answer.reserve(answer.bytes().size() + files.size() * 48);
        quint64 device = 0;
        for (const FolderEntry& entry : files) {
            answer.putEntry(entry, device);
        }
    };
    if constexpr (std::is_same_v<T, QList<FolderEntry>>) {
        addFiles(value);  // the whole listing (hidden files too), however the question narrowed it
    } else if constexpr (std::is_same_v<T, QList<SubFolder>>) {
        for (const SubFolder& folder : value) {
            answer << folder.name << folder.mayHaveSubFolders;
        }
    } else if constexpr (std::is_same_v<T, FileSystem::Contents>) {
        addFiles(value.files);
        answer << value.files.size();  // where the files end and the folders begin
        for (const QString& folder : value.folders) {
            answer << folder;
        }
    } else if constexpr (std::is_same_v<T, std::optional<FileStamp>>) {
        answer << value.has_value() << (value ? value->size : 0) << (value ? value->modified : 0)
               << (value ? value->inode : 0);
    } else if constexpr (std::is_same_v<T, FileIds>) {
        for (const FileId& id : value) {
            answer << id.device << id.inode;
        }
    } else {
        answer << value;
    }
    hash.addData(answer.bytes());
}

// The path of a question as noted (`question`).
QString pathOf(const QByteArray& question) {
    qsizetype length = 0;
    std::memcpy(&length, question.constData() + 1, sizeof length);
    return QString(reinterpret_cast<const QChar*>(question.constData() + 1 + sizeof length),
                   length);
}

// The answer that `disk` gives now to one question, into `hash`.
void answerNow(char kind, const QString& path, const FileSystem& disk, QCryptographicHash& hash) {
    switch (kind) {
        case kFileExists:
            return hashAnswer(kind, path, disk.FileExists(path), hash);
        case kFolderExists:
            return hashAnswer(kind, path, disk.FolderExists(path), hash);
        case kFileSize:
            return hashAnswer(kind, path, disk.fileSize(path), hash);
        case kListFiles:
            return hashAnswer(kind, path, disk.listFiles(path, true), hash);
        case kListFolders:
            return hashAnswer(kind, path, disk.listFolders(path), hash);
        case kListContents:
            return hashAnswer(kind, path, disk.listContents(path), hash);
        case kFileStamp:
            return hashAnswer(kind, path, disk.fileStamp(path), hash);
        case kFileIds:
            return hashAnswer(kind, path, disk.fileIds(path), hash);
        case kFolderReadable:
            return hashAnswer(kind, path, disk.folderReadable(path), hash);
        default:
            return hashAnswer(kind, path, disk.currentDirectory(), hash);
    }
}

}  // namespace

template <typename T>
T RecordingDisk::noted(char kind, const QString& path, T value) const {
    QByteArray asked = question(kind, path);
    const std::lock_guard lock(mutex_);
    if (seen_.contains(asked)) {
        return value;
    }
    seen_.insert(asked);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hashAnswer(kind, path, value, hash);
    bool byListing = false;
    if constexpr (std::is_same_v<T, QList<FolderEntry>>) {
        listings_.insert(withSeparator(path), value);
    } else if constexpr (std::is_same_v<T, bool>) {
        byListing = kind == kFileExists && value;
    } else if constexpr (std::is_same_v<T, QList<FileId>>) {
        byListing = value.size() == 1;
    }
    noted_.append({std::move(asked), hash.result(), byListing});
    return value;
}

bool RecordingDisk::listed(const QString& path) const {
    const auto [folder, name] = folderAndName(path);
    const auto listing = listings_.constFind(folder);
    if (listing == listings_.constEnd()) {
        return false;
    }
    auto names = listedNames_.find(folder);
    if (names == listedNames_.end()) {
        names = listedNames_.insert(folder, {});
        for (const FolderEntry& entry : *listing) {
            if (!entry.isLink && entry.id.isKnown()) {
                names->insert(entry.name);
            }
        }
    }
    return names->contains(name);
}

QByteArray RecordingDisk::questions() const {
    const std::lock_guard lock(mutex_);
    QByteArray questions;
    for (const Noted& noted : noted_) {
        if (!noted.byListing || !listed(pathOf(noted.question))) {
            questions += noted.question;
        }
    }
    return questions;
}

QByteArray RecordingDisk::signature() const {
    const std::lock_guard lock(mutex_);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const Noted& noted : noted_) {
        if (!noted.byListing || !listed(pathOf(noted.question))) {
            hash.addData(noted.answer);
        }
    }
    return hash.result();
}

bool RecordingDisk::FileExists(const QString& path) const {
    return noted(kFileExists, path, disk_.FileExists(path));
}

bool RecordingDisk::FolderExists(const QString& path) const {
    return noted(kFolderExists, path, disk_.FolderExists(path));
}

qint64 RecordingDisk::fileSize(const QString& path) const {
    return noted(kFileSize, path, disk_.fileSize(path));
}

QList<FolderEntry> RecordingDisk::listFiles(const QString& folder, bool withHidden,
                                            const NameTest& wanted) const {
    const QList<FolderEntry> all = noted(kListFiles, folder, disk_.listFiles(folder, true));
    if (withHidden && !wanted) {
        return all;
    }
    QList<FolderEntry> picked;
    for (const FolderEntry& entry : all) {
        if ((withHidden || !entry.name.startsWith(u'.')) && (!wanted || wanted(entry.name))) {
            picked.append(entry);
        }
    }
    return picked;
}

QList<SubFolder> RecordingDisk::listFolders(const QString& folder) const {
    return noted(kListFolders, folder, disk_.listFolders(folder));
}

FileSystem::Contents RecordingDisk::listContents(const QString& folder) const {
    return noted(kListContents, folder, disk_.listContents(folder));
}

std::optional<FileStamp> RecordingDisk::fileStamp(const QString& path) const {
    return noted(kFileStamp, path, disk_.fileStamp(path));
}

FileIds RecordingDisk::fileIds(const QString& path) const {
    return noted(kFileIds, path, disk_.fileIds(path));
}

bool RecordingDisk::folderReadable(const QString& folder) const {
    return noted(kFolderReadable, folder, disk_.folderReadable(folder));
}

QString RecordingDisk::currentDirectory() const {
    return noted(kCurrentDirectory, {}, disk_.currentDirectory());
}

Result<QByteArray> replaySignature(const QByteArray& questions, const FileSystem& disk) {
    const Error damaged{0, QStringLiteral("the recorded questions are damaged")};
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QCryptographicHash answer(QCryptographicHash::Sha1);
    for (qsizetype at = 0; at < questions.size();) {
        qsizetype length = 0;
        if (questions.size() - at < qsizetype(1 + sizeof length)) {
            return damaged;
        }
        std::memcpy(&length, questions.constData() + at + 1, sizeof length);
        const qsizetype from = at + 1 + qsizetype(sizeof length);
        if (length < 0 || length > (questions.size() - from) / 2) {
            return damaged;
        }
        const QString path(reinterpret_cast<const QChar*>(questions.constData() + from), length);
        answer.reset();
        answerNow(questions[at], path, disk, answer);
        hash.addData(answer.resultView());
        at = from + 2 * length;
    }
    return hash.result();
}

}  // namespace tidewick
