#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <utility>
#include <vector>

// Where texts held in a list stand in it, found by the text: an open-addressing table of each
// text's hash and position, holding no text of its own and allocating nothing per text. The
// lists that look up hundreds of thousands of names (a folder's listing, a session's paths) use
// it where a hash of strings would copy and hash each name again.
namespace tidewick {

class TextIndex {
public:
    /// The hash the table files `text` under.
    static quint32 hashOf(QStringView text);

    /// Makes room for `count` positions without growing.
    void reserve(qsizetype count);
    /// The position of the text `text`, of hash `hash`, where `textAt(position)` gives the text
    /// at each position in; -1 when no position holds it.
    template <typename TextAt>
    qsizetype find(QStringView text, quint32 hash, const TextAt& textAt) const {
        if (slots_.empty()) {
            return -1;
        }
        const size_t mask = slots_.size() - 1;
        for (size_t at = hash & mask;; at = (at + 1) & mask) {
            const quint64 slot = slots_[at];
            if (slot == 0) {
                return -1;
            }
            const qsizetype position = qsizetype(quint32(slot)) - 1;
            if (quint32(slot >> 32) == hash && QStringView(textAt(position)) == text) {
                return position;
            }
        }
    }
    /// Files `position` under `hash`; the caller knows that no position of its text is in yet.
    void insert(quint32 hash, qsizetype position);
    /// Files the `count` positions from `from`, in order, each unless a position of its text
    /// (`textAt`) is in already. Many at once cost less than one at a time: a large table's slot
    /// is far away in memory, and each is asked for a few texts ahead.
    template <typename TextAt>
    void insertEachNew(qsizetype from, qsizetype count, const TextAt& textAt) {
        std::vector<quint32> hashes(static_cast<size_t>(count));
        for (qsizetype i = 0; i < count; ++i) {
            hashes[size_t(i)] = hashOf(textAt(from + i));
        }
        reserve(count_ + count);
        constexpr size_t kAhead = 16;
        for (size_t i = 0; i < hashes.size(); ++i) {
            if (i + kAhead < hashes.size()) {
                prefetch(hashes[i + kAhead]);
            }
            const qsizetype position = from + qsizetype(i);
            if (find(textAt(position), hashes[i], textAt) < 0) {
                insert(hashes[i], position);
            }
        }
    }
    /// Asks the memory for the slot of `hash` ahead of a find or insert.
    void prefetch(quint32 hash) const {
#if defined(__GNUC__) || defined(__clang__)
        if (!slots_.empty()) {
            __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]);
        }
#else
        Q_UNUSED(hash);
#endif
    }
    void clear() {
        slots_.clear();
        count_ = 0;
    }

private:
    void grow();
    // Files every slot anew in a table of `size` slots, a power of two.
    void rehash(size_t size);

    // Each slot is empty (0) or holds a text's hash (high half) and its position plus one (low
    // half); the table is kept at most half full.
    std::vector<quint64> slots_;
    qsizetype count_ = 0;
};

/// A text with its hash (TextIndex::hashOf), for a text looked up in several tables: it is hashed
/// once.
struct HashedText {
    explicit HashedText(QStringView text) : text(text), hash(TextIndex::hashOf(text)) {}
    QStringView text;
    quint32 hash;
};

/// Texts, each once, with a value each: a hash of strings in which a lookup by a view copies
/// nothing and each text is hashed once.
template <typename Value>
class TextMap {
    struct TextAt {
        const QStringList& texts;
        const QString& operator()(qsizetype at) const { return texts[at]; }
    };

public:
    void reserve(qsizetype count) {
        texts_.reserve(count);
        values_.reserve(count);
        index_.reserve(count);
    }
    qsizetype size() const { return texts_.size(); }
    /// The texts, in the order they came in, and the value of each.
    const QStringList& texts() const { return texts_; }
    const QList<Value>& values() const { return values_; }
    bool contains(QStringView text) const { return contains(HashedText(text)); }
    bool contains(const HashedText& text) const { return positionOf(text) >= 0; }
    /// The value of `text`, or nullptr when the map lacks it.
    const Value* find(QStringView text) const { return find(HashedText(text)); }
    const Value* find(const HashedText& text) const {
        const qsizetype at = positionOf(text);
        return at < 0 ? nullptr : &values_[at];
    }
    /// The value of `text`, a default one put in first when the map lacks it.
    Value& operator[](const QString& text) { return tryEmplace(text).first; }
    /// The same, and whether the value was put in now: one look-up where a find and an insert
    /// would take two.
    std::pair<Value&, bool> tryEmplace(const QString& text) {
        const quint32 hash = TextIndex::hashOf(text);
        qsizetype at = index_.find(text, hash, TextAt{texts_});
        const bool added = at < 0;
        if (added) {
            at = texts_.size();
            texts_.append(text);
            values_.append(Value());
            index_.insert(hash, at);
        }
        return {values_[at], added};
    }

private:
    qsizetype positionOf(const HashedText& text) const {
        return index_.find(text.text, text.hash, TextAt{texts_});
    }

    QStringList texts_;
    QList<Value> values_;
    TextIndex index_;
};

/// Texts, each once (TextMap without values).
class TextSet {
public:
    void reserve(qsizetype count) { map_.reserve(count); }
    void insert(const QString& text) { map_[text]; }
    bool isEmpty() const { return map_.size() == 0; }
    bool contains(QStringView text) const { return map_.contains(text); }
    bool contains(const HashedText& text) const { return map_.contains(text); }

private:
    TextMap<bool> map_;
};

}  // namespace tidewick
