#include "readers/import_aup.h"

#include <QAtomicInteger>
#include <QFileInfo>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <algorithm>
#include <deque>
#include <future>
#include <tuple>
#include <utility>

#include "readers/path_list.h"
#include "readers/session_bytes.h"

namespace tidewick {

namespace {

// Audacity 3 marks its databases with this application id: "AUDY".
constexpr qint64 kAudacityApplicationId = 0x41554459;

SessionRead failedRead(ReadFailure failure, const QString& detail) {
    return failedSessionRead(SessionKindId::Aup, failure, detail);
}

// The text of an attribute's value: its bytes as they stand, or decoded where it holds an escape.
QString attributeText(QByteArrayView tag, QByteArrayView attribute) {
    const std::optional<QByteArrayView> text = tagAttributeText(tag, attribute);
    if (!text) {
        return {};
    }
    if (text->contains('&')) {
        return QString::fromUtf8(decodeXmlEscapes(*text));
    }
    return QString::fromUtf8(*text);
}

// A character of a name given as ASCII bytes or as text.
char16_t unitOf(char c) {
    return char16_t(static_cast<unsigned char>(c));
}
char16_t unitOf(QChar c) {
    return c.unicode();
}

// A blockfile is a name, never a path: one holding a separator or a step up names no file of the
// data folder.
template <typename Name>
bool isBlockFileName(Name name) {
    if (name.isEmpty() || name.size() > 255 ||
        (name.size() == 2 && unitOf(name[0]) == u'.' && unitOf(name[1]) == u'.')) {
        return false;
    }
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (unitOf(name[i]) == u'/' || unitOf(name[i]) == u'\\') {
            return false;
        }
    }
    return true;
}

// Where the blockfile `name` lies in its data folder: "e00/d00/e0000090.au", or the name alone
// for the 1.x format (`flat`) and for a name too short to hold its folders.
template <typename Name>
QString blockFileLocationOf(Name name, bool flat) {
    const bool foldered = !flat && name.size() >= 6;
    QString location(name.size() + (foldered ? 8 : 0), Qt::Uninitialized);
    char16_t* out = reinterpret_cast<char16_t*>(location.data());
    const auto put = [&out, name](qsizetype from, qsizetype count) {
        for (qsizetype i = from; i < from + count; ++i) {
            *out++ = unitOf(name[i]);
        }
    };
    if (foldered) {  // "e00/d5a/": characters 0-2, then "d" and characters 3-4
        put(0, 3);
        *out++ = u'/';
        *out++ = u'd';
        put(3, 2);
        *out++ = u'/';
    }
    put(0, name.size());
    return location;
}

// The references of a project, or of a piece of one, in the order met; repeats stay until
// they join the project's list.
class AupReferences {
public:
    explicit AupReferences(bool flat) : flat(flat) {}

    bool flat = false;  // the 1.x format: blockfiles in the data folder itself

    // The start tag `tag` of an element named `name`.
    void element(QByteArrayView name, QByteArrayView tag) {
        if (name == "simpleblockfile") {
            addBlockFile(tag, "filename");
        } else if (name == "pcmaliasblockfile" || name == "odpcmaliasblockfile") {
            addBlockFile(tag, "summaryfile");
            addOutside(attributeText(tag, "aliasfile"));
        } else if (name == "legacyblockfile") {
            addBlockFile(tag, "name");
        } else if (name == "legacyaliasblockfile") {
            addBlockFile(tag, "name");
            addOutside(attributeText(tag, "aliaspath"));
        } else if (name == "import") {
            addOutside(attributeText(tag, "filename"));  // a compressed copy's audio beside it
        }
    }

private:
    void addBlockFile(QByteArrayView tag, QByteArrayView attribute) {
        const std::optional<QByteArrayView> text = tagAttributeText(tag, attribute);
        if (!text || text->isEmpty()) {
            return;
        }
        // Most names are ASCII without escapes ("e0000090.au"): their location is made from the
        // bytes as they stand, with no text of the name alone.
        if (QtPrivate::isAscii(QLatin1StringView(*text)) && !text->contains('&')) {
            if (isBlockFileName(*text)) {
                add({FileReference::Base::DataFolder, blockFileLocationOf(*text, flat), {}});
            }
            return;
        }
        const QString name = attributeText(tag, attribute);
        if (isBlockFileName(QStringView(name))) {
            add({FileReference::Base::DataFolder,
                 blockFileLocationOf(QStringView(name), flat),
                 {}});
        }
    }

    void addOutside(const QString& path) {
        if (path.isEmpty() || path.size() > kMaxPathBytes) {
            return;
        }
        const bool rooted =
            path.startsWith(u'/') || path.startsWith(u'\\') || (path.size() > 1 && path[1] == u':');
        if (rooted) {
            add({FileReference::Base::None, {}, {path}});
        } else {
            add({FileReference::Base::SessionFolder, path, {}});
        }
    }

    // Gathered first and added at the end, many at once (ReferenceList::addEach), each written
    // as its one path.
    void add(FileReference reference) {
        texts_.append(reference.absolute.isEmpty() ? reference.relative
                                                   : reference.absolute.first());
        references_.append(std::move(reference));
    }

public:
    // Works out the hashes of the references' texts ahead of addTo, such as on another thread.
    void hashTexts() { hashes_ = MediaPathList::hashesOf(texts_); }

    // Adds the references to `found` after those it holds, each file once.
    void addTo(ReferenceList& found) {
        if (hashes_.size() != size_t(texts_.size())) {
            hashTexts();
        }
        found.addEach(std::exchange(references_, {}), std::exchange(texts_, {}), hashes_);
    }

private:
    QList<FileReference> references_;
    QStringList texts_;
    std::vector<quint32> hashes_;
};

constexpr QByteArrayView kBlockFile = "blockfile";
constexpr QByteArrayView kImport = "<import";

// The elements of a project that may name a file, in the order they stand: those whose name ends
// in "blockfile", and the imports. Each kind's next one is looked for once.
class FileElements {
public:
    explicit FileElements(QByteArrayView text, qsizetype from)
        : text_(text), block_(nextBlockFile(from)), import_(nextImport(from)) {}

    // The next element: the position of its "<" and its name; −1 once there are none.
    std::pair<qsizetype, QByteArrayView> next() {
        if (block_.first < 0 && import_ < 0) {
            return {-1, {}};
        }
        if (import_ >= 0 && (block_.first < 0 || import_ < block_.first)) {
            const qsizetype at = std::exchange(import_, nextImport(import_ + 1));
            return {at, "import"};
        }
        // The next is looked for past this one's name.
        return std::exchange(block_, nextBlockFile(block_.first + 1 + block_.second.size()));
    }

private:
    std::pair<qsizetype, QByteArrayView> nextBlockFile(qsizetype from) const {
        for (qsizetype hit = findBytes(text_, kBlockFile, from); hit >= 0;
             hit = findBytes(text_, kBlockFile, hit + 1)) {
            qsizetype start = hit;  // back over the rest of the name
            while (start > 0 && hit - start < 16 && text_[start - 1] >= 'a' &&
                   text_[start - 1] <= 'z') {
                --start;
            }
            const QByteArrayView name = text_.sliced(start, hit + kBlockFile.size() - start);
            if (start > 0 && text_[start - 1] == '<' &&
                startsElement(text_.sliced(start - 1), name)) {
                return {start - 1, name};
            }
        }
        return {-1, {}};
    }

    qsizetype nextImport(qsizetype from) const {
        for (qsizetype at = findBytes(text_, kImport, from); at >= 0;
             at = findBytes(text_, kImport, at + 1)) {
            if (startsElement(text_.sliced(at), "import")) {
                return at;
            }
        }
        return -1;
    }

    QByteArrayView text_;
    std::pair<qsizetype, QByteArrayView> block_;
    qsizetype import_;
};

// Reads the elements of `bytes` that name files, those from `from` on that begin before `limit`,
// into `references`: where one begins whose start tag does not end within `bytes`, and its name;
// −1 when none does.
std::pair<qsizetype, QByteArrayView> readElements(QByteArrayView bytes, qsizetype from,
                                                  qsizetype limit, AupReferences& references) {
    FileElements elements(bytes.first(limit), from);
    for (auto [at, name] = elements.next(); at >= 0; std::tie(at, name) = elements.next()) {
        const QByteArrayView tag = startTagAt(bytes, at);
        if (tag.isEmpty()) {
            return {at, name};
        }
        references.element(name, tag);
    }
    return {-1, {}};
}

// A project read a piece at a time (or all at once): the elements that name files, each read
// from its start tag; the rest of its XML (tracks, envelopes, labels) names none.
class AupProjectScan {
public:
    // With `onCores`, pieces are read on the cores at hand, each into a list of its own, and the
    // lists joined in order.
    // A project names a blockfile every hundred bytes or two, most of them once: room is made
    // for those of a project of `size` bytes.
    AupProjectScan(qsizetype size, bool onCores)
        : cores_(onCores ? std::max(1, QThread::idealThreadCount()) : 0) {
        found_.reserve(std::min<qsizetype>(size / 128, 1 << 22));
    }

    // Reads the elements of `bytes`, the project's bytes from where the last call stopped on
    // (`atEnd` once they reach its end): how many bytes it read, the rest being an element whose
    // start tag goes on past them, or −1 once the read has failed.
    qsizetype take(const QByteArray& bytes, bool atEnd) {
        const QByteArrayView text(bytes);
        qsizetype from = 0;
        if (!rootRead_) {
            from = rootElementStart(text);
            if (!atEnd && (from < 0 || text.size() - from < 64)) {
                return 0;  // the root, or its name, lies past these bytes
            }
            const QByteArrayView rootTag = from < 0 ? QByteArrayView() : text.sliced(from);
            flat_ = startsElement(rootTag, "audacityproject");
            if (!flat_ && !startsElement(rootTag, "project")) {
                return fail(ReadFailure::NotThisKind, {});
            }
            rootRead_ = true;
        }
        const QByteArrayView closing = flat_ ? "</audacityproject>" : "</project>";
        if (atEnd && !endsWithClosing(text, closing)) {
            return fail(ReadFailure::CutShort, QString::fromLatin1(closing));
        }
        // Elements whose name begins before the last "<" are read now: their names are whole.
        const qsizetype last = atEnd ? -1 : text.lastIndexOf('<');
        const qsizetype limit = last < from ? text.size() : last;
        if (cores_ > 0 && !atEnd) {
            readOnCore(bytes, from, limit);
            return limit;
        }
        joinPieces();
        AupReferences piece(flat_);
        const auto [unended, name] = readElements(text, from, limit, piece);
        piece.addTo(found_);
        if (unended >= 0 && !atEnd) {
            return unended;  // read again with the bytes that follow
        }
        if (unended >= 0) {
            return fail(ReadFailure::Damaged,
                        QStringLiteral("a <%1> element never ends").arg(QString::fromLatin1(name)));
        }
        return limit;
    }

    // Whether a piece read on a core held a start tag that went on past it (a "<" inside a
    // value): such a project must be read one piece after another.
    bool cutTag() const { return cutTag_; }

    SessionRead finish() {
        joinPieces();
        if (failed_) {
            return std::move(*failed_);
        }
        SessionRead read;
        found_.moveInto(read);
        return read;
    }

private:
    // Reads the elements from `from` to `limit` of `bytes` on another thread, which shares them.
    void readOnCore(const QByteArray& bytes, qsizetype from, qsizetype limit) {
        if (qsizetype(pieces_.size()) >= cores_) {
            joinFirstPiece();
        }
        pieces_.push_back(std::async(std::launch::async, [bytes, from, limit, flat = flat_] {
            AupReferences references(flat);
            const bool cut = readElements(bytes, from, limit, references).first >= 0;
            references.hashTexts();
            return std::pair{std::move(references), cut};
        }));
    }

    void joinFirstPiece() {
        auto [references, cut] = pieces_.front().get();
        pieces_.pop_front();
        cutTag_ = cutTag_ || cut;
        references.addTo(found_);
    }

    void joinPieces() {
        while (!pieces_.empty()) {
            joinFirstPiece();
        }
    }

    qsizetype fail(ReadFailure failure, const QString& detail) {
        failed_ = failedRead(failure, detail);
        return -1;
    }

    const qsizetype cores_;
    std::deque<std::future<std::pair<AupReferences, bool>>> pieces_;
    bool cutTag_ = false;
    ReferenceList found_;
    bool flat_ = false;
    bool rootRead_ = false;
    std::optional<SessionRead> failed_;
};

// Checks the ".aup3" project `fileName` with Qt SQL, opened read-only.
SessionRead readAup3File(const QString& fileName) {
    // Each check has a connection of its own: sessions are read on several threads at once.
    static QAtomicInteger<quint64> checks;
    const QString connection = QStringLiteral("tidewick-aup3-%1").arg(++checks);
    QString problem;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(fileName);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            problem = db.lastError().text();
        } else {
            QSqlQuery id(QStringLiteral("PRAGMA application_id"), db);
            QSqlQuery project(
                QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND "
                               "name IN ('project', 'autosave', 'sampleblocks')"),
                db);
            const bool audacity = id.next() && id.value(0).toLongLong() == kAudacityApplicationId &&
                                  project.next() && project.value(0).toInt() >= 2;
            if (!audacity) {
                problem = QStringLiteral("no Audacity project inside");
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    if (!problem.isEmpty()) {
        return failedRead(ReadFailure::Damaged, problem);
    }
    return SessionRead();
}

}  // namespace

SessionRead readAupSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    AupProjectScan project(bytes.size(), false);
    project.take(QByteArray::fromRawData(bytes.data(), bytes.size()), true);
    return project.finish();
}

std::optional<SessionRead> readAupFile(const QString& fileName) {
    if (fileName.endsWith(QLatin1String(".aup3"), Qt::CaseInsensitive)) {
        return readAup3File(fileName);
    }
    // A large project is many megabytes of XML, of which only the file elements are kept: it
    // is read a megabyte at a time rather than held whole, the pieces on the cores at hand.
    for (const bool onCores : {QThread::idealThreadCount() > 1, false}) {
        AupProjectScan project(QFileInfo(fileName).size(), onCores);
        const QString error = readSessionPieces(
            fileName, 1 << 20,
            [&project](const QByteArray& bytes, bool atEnd) { return project.take(bytes, atEnd); });
        if (!error.isEmpty()) {
            return failedRead(ReadFailure::Unreadable, error);
        }
        SessionRead read = project.finish();
        if (!project.cutTag()) {
            return read;
        }
    }
    Q_UNREACHABLE();
}

}  // namespace tidewick
