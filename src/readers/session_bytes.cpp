#include "readers/session_bytes.h"

#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <limits>

namespace tidewick {

FileBytes readSessionBytes(const QString& fileName) {
    // A pipe would block the read until something writes to it, and a device such as /dev/zero
    // never ends: only an ordinary file (or a link to one) is opened at all.
    const QFileInfo info(fileName);
    if (!info.isFile()) {
        return {{},
                info.exists() ? QStringLiteral("It is not an ordinary file.")
                              : QStringLiteral("The file does not exist.")};
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return {{}, file.errorString()};
    }
    if (file.size() > qint64(std::numeric_limits<qint32>::max()) - 1024) {
        // Session positions are 32-bit; no real session comes near this.
        return {{}, QStringLiteral("The file is larger than 2 GB.")};
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return {{}, file.errorString()};
    }
    return {std::move(bytes), {}};
}

ReaderMessage fileErrorMessage(const QString& kindCaption, const QString& reason) {
    return {QStringLiteral("An error occurred accessing the selected ") + kindCaption +
                QStringLiteral(" file.  ") + reason,
            QStringLiteral("File Error"), MessageIcon::Critical};
}

qsizetype LineReader::nextOf(char c, qsizetype& cached) const {
    if (cached < pos_) {
        const auto* hit = static_cast<const char*>(
            std::memchr(bytes_.data() + pos_, c, size_t(bytes_.size() - pos_)));
        cached = hit == nullptr ? bytes_.size() : hit - bytes_.data();
    }
    return cached;
}

QByteArrayView LineReader::next() {
    const qsizetype size = bytes_.size();
    const qsizetype begin = pos_;
    if (begin >= size) {
        return {};
    }
    qsizetype end = nextOf('\r', nextCr_);
    if (lineFeedEndsLine_) {
        end = qMin(end, nextOf('\n', nextLf_));
    }
    pos_ = end;
    if (pos_ < size) {
        const char* data = bytes_.data();
        ++pos_;  // the CR or LF itself
        if (data[end] == '\r' && pos_ < size && data[pos_] == '\n') {
            ++pos_;
        }
    }
    return bytes_.sliced(begin, end - begin);
}

QByteArrayView trimmedLine(QByteArrayView line) {
    qsizetype begin = 0;
    qsizetype end = line.size();
    while (begin < end && line[begin] == ' ') {
        ++begin;
    }
    while (end > begin && line[end - 1] == ' ') {
        --end;
    }
    return line.sliced(begin, end - begin);
}

QByteArrayView trimmedOfBlanksAndTabs(QByteArrayView line) {
    qsizetype begin = 0;
    qsizetype end = line.size();
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (begin < end && blank(line[begin])) {
        ++begin;
    }
    while (end > begin && blank(line[end - 1])) {
        --end;
    }
    return line.sliced(begin, end - begin);
}

QByteArray cleanedLine(QByteArrayView line) {
    QByteArray out = trimmedOfBlanksAndTabs(line).toByteArray();
    out.replace('\t', ' ');
    return out;
}

std::optional<QByteArrayView> textBetweenFirstQuotes(QByteArrayView line) {
    const qsizetype first = line.indexOf('"');
    if (first < 0) {
        return std::nullopt;
    }
    const qsizetype second = line.indexOf('"', first + 1);
    if (second < 0) {
        return std::nullopt;
    }
    return line.sliced(first + 1, second - first - 1);
}

}  // namespace tidewick
