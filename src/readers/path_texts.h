#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <iterator>

// The media paths a read hands over, in the order the session names them.
namespace tidewick {

/// A list of path texts. A reader that gathers its texts as QStrings hands them over as they
/// are (the list is then made of them and takes no more); a binary session, which may name
/// hundreds of thousands of files, appends its texts, which are kept as UTF-8 in one block, each
/// made a QString when it is asked for: one allocation for them all, at half the size.
class PathTexts {
public:
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = QString;
        using difference_type = qsizetype;
        using pointer = void;
        using reference = QString;

        const_iterator() = default;
        const_iterator(const PathTexts* texts, qsizetype at) : texts_(texts), at_(at) {}
        QString operator*() const { return texts_->at(at_); }
        const_iterator& operator++() {
            ++at_;
            return *this;
        }
        const_iterator operator++(int) {
            const const_iterator before = *this;
            ++at_;
            return before;
        }
        bool operator==(const const_iterator&) const = default;

    private:
        const PathTexts* texts_ = nullptr;
        qsizetype at_ = 0;
    };
    using iterator = const_iterator;
    using value_type = QString;

    PathTexts() = default;
    /// The texts of `texts`, as they are.
    PathTexts(QStringList texts) : texts_(std::move(texts)) {}

    /// Makes room for about `count` texts of `bytes` UTF-8 bytes in all, kept in one block.
    void reserveBlock(qsizetype count, qsizetype bytes);
    /// Appends a text given as UTF-8.
    void appendUtf8(QByteArrayView text);
    /// Appends a text.
    void append(const QString& text) { appendUtf8(text.toUtf8()); }

    qsizetype size() const { return texts_.size() + ends_.size(); }
    bool isEmpty() const { return size() == 0; }
    QString at(qsizetype i) const;
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, size()}; }
    QStringList toList() const;
    void clear() { *this = PathTexts(); }

    friend bool operator==(const PathTexts& a, const PathTexts& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    QStringList texts_;      // the texts handed over as QStrings, or
    QByteArray block_;       // every text appended, in UTF-8, one after the other,
    QList<qsizetype> ends_;  // each ending here
};

}  // namespace tidewick
