#include "readers/path_texts.h"

namespace tidewick {

// A list holds its texts one way: as the QStrings handed over, or, from its first text given
// as UTF-8 or from the room made for them, in the block.
void PathTexts::reserveBlock(qsizetype count, qsizetype bytes) {
    if (texts_.isEmpty()) {
        inBlock_ = true;
        block_.reserve(block_.size() + bytes);
        ends_.reserve(ends_.size() + count);
    }
}

void PathTexts::appendUtf8(QByteArrayView text) {
    if (!texts_.isEmpty()) {
        texts_.append(QString::fromUtf8(text));
        return;
    }
    inBlock_ = true;
    block_.append(text);
    ends_.append(block_.size());
}

void PathTexts::append(const QString& text) {
    if (inBlock_) {
        appendUtf8(text.toUtf8());
    } else {
        texts_.append(text);
    }
}

QString PathTexts::at(qsizetype i) const {
    if (!inBlock_) {
        return texts_.at(i);
    }
    const qsizetype begin = i == 0 ? 0 : ends_.at(i - 1);
    return QString::fromUtf8(block_.constData() + begin, ends_.at(i) - begin);
}

QStringList PathTexts::toList() const {
    if (!inBlock_) {
        return texts_;
    }
    QStringList list;
    list.reserve(size());
    for (QString text : *this) {
        list.append(std::move(text));
    }
    return list;
}

}  // namespace tidewick
