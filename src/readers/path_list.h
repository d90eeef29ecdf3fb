#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <vector>

#include "readers/reader_contract.h"
#include "text/text_index.h"

// The lists a reader gathers its paths in: each text once, in the order first met. A session may
// name hundreds of thousands of files (an Audacity project's blockfiles), so the test "met
// before?" costs one look into a table of the texts' hashes (TextIndex).
namespace tidewick {

/// The media paths of a session, in the order first met, never the same text twice (letter
/// case counts).
class MediaPathList {
public:
    /// Makes room for about `count` paths.
    void reserve(qsizetype count) {
        paths_.reserve(count);
        index_.reserve(count);
    }
    /// Appends `path` unless the list holds it already; returns whether it was appended.
    bool appendUnique(const QString& path) { return insert(path, TextIndex::hashOf(path)); }
    /// Appends each of `paths`, whose hashes (hashesOf) are `hashes`, that the list does not
    /// hold yet, in order; whether each was. Many at once cost less than one at a time: the
    /// table is looked into ahead of each test, and the hashes may be worked out elsewhere, such
    /// as on another thread.
    std::vector<bool> appendEachUnique(QStringList paths, const std::vector<quint32>& hashes);
    /// The hash of each of `paths`, as the list files it.
    static std::vector<quint32> hashesOf(const QStringList& paths);
    bool contains(QStringView path) const;
    const QStringList& paths() const { return paths_; }
    QStringList takePaths() {
        index_.clear();
        return std::move(paths_);
    }

private:
    auto textAt() const {
        return [this](qsizetype at) -> const QString& { return paths_[at]; };
    }
    bool insert(const QString& path, quint32 hash);

    QStringList paths_;
    TextIndex index_;
};

/// The references of a project kind's session, with the text of each as the session writes it
/// (a read's `paths`), each text once.
class ReferenceList {
public:
    void reserve(qsizetype count) {
        texts_.reserve(count);
        references_.reserve(count);
    }
    bool contains(QStringView text) const { return texts_.contains(text); }
    /// Adds `reference`, written as `text`, unless a reference of that text is in already.
    bool add(FileReference reference, const QString& text) {
        if (!texts_.appendUnique(text)) {
            return false;
        }
        references_.append(std::move(reference));
        return true;
    }
    /// Adds each reference with its text, as add does one at a time.
    void addEach(QList<FileReference> references, QStringList texts) {
        const std::vector<quint32> hashes = MediaPathList::hashesOf(texts);
        addEach(std::move(references), std::move(texts), hashes);
    }
    /// The same, with the hashes of `texts` (MediaPathList::hashesOf) worked out before.
    void addEach(QList<FileReference> references, QStringList texts,
                 const std::vector<quint32>& hashes) {
        const std::vector<bool> added = texts_.appendEachUnique(std::move(texts), hashes);
        const qsizetype from = references_.size();
        if (from == 0 && references_.capacity() < references.size()) {
            references_ = std::move(references);
        } else {
            references_.append(std::move(references));
        }
        qsizetype kept = from;
        for (qsizetype i = from; i < references_.size(); ++i) {
            if (added[size_t(i - from)]) {
                if (kept != i) {
                    references_[kept] = std::move(references_[i]);
                }
                ++kept;
            }
        }
        references_.resize(kept);
    }
    /// Adds the references of `later` after these, as add does one at a time.
    void addEach(ReferenceList later) {
        addEach(std::move(later.references_), later.texts_.takePaths());
    }
    qsizetype size() const { return references_.size(); }
    /// Hands the references and their texts to `read`.
    void moveInto(SessionRead& read) {
        read.paths = texts_.takePaths();
        read.references = std::move(references_);
    }

private:
    MediaPathList texts_;
    QList<FileReference> references_;
};

}  // namespace tidewick
