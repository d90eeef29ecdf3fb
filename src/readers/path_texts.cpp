#include "readers/path_texts.h"

namespace tidewick {

void PathTexts::reserveBlock(qsizetype count, qsizetype bytes) {
    block_.reserve(block_.size() + bytes);
    ends_.reserve(ends_.size() + count);
}

void PathTexts::appendUtf8(QByteArrayView text) {
    Q_ASSERT(texts_.isEmpty());  // a list handed over whole takes no more
    block_.append(text);
    ends_.append(block_.size());
}

QString PathTexts::at(qsizetype i) const {
    if (ends_.isEmpty()) {
        return texts_.at(i);
    }
    const qsizetype begin = i == 0 ? 0 : ends_.at(i - 1);
    return QString::fromUtf8(block_.constData() + begin, ends_.at(i) - begin);
}

QStringList PathTexts::toList() const {
    if (ends_.isEmpty()) {
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
