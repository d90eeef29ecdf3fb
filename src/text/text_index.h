#pragma once

#include <QStringView>
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

    // Each slot is empty (0) or holds a text's hash (high half) and its position plus one (low
    // half); the table is kept at most half full.
    std::vector<quint64> slots_;
    qsizetype count_ = 0;
};

}  // namespace tidewick
