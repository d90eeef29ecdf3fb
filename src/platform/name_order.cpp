#include "platform/name_order.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>

namespace tidewick {

namespace {

using NameAt = std::function<const QString&(qsizetype)>;

std::vector<qsizetype> orderByLowered(qsizetype count, const NameAt& nameAt) {
    std::vector<std::pair<QString, qsizetype>> keys;
    keys.reserve(size_t(count));
    for (qsizetype i = 0; i < count; ++i) {
        keys.emplace_back(nameAt(i).toLower(), i);
    }
    std::sort(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
        if (const int c = a.first.compare(b.first); c != 0) {
            return c < 0;
        }
        return nameAt(a.second) < nameAt(b.second);
    });
    std::vector<qsizetype> order;
    order.reserve(keys.size());
    for (const auto& key : keys) {
        order.push_back(key.second);
    }
    return order;
}

// The same order when every name is ASCII (else empty): then a byte compares as its code unit
// does, and each name lower-cased is its bytes with A-Z moved, held in one buffer.
std::vector<qsizetype> orderByAsciiBytes(qsizetype count, const NameAt& nameAt) {
    qsizetype total = 0;
    for (qsizetype i = 0; i < count; ++i) {
        if (!QtPrivate::isAscii(nameAt(i))) {
            return {};
        }
        total += 2 * nameAt(i).size();
    }
    std::string bytes(size_t(total), '\0');
    std::vector<std::pair<std::string_view, std::string_view>> names;  // lowered, as written
    names.reserve(size_t(count));
    char* out = bytes.data();
    for (qsizetype i = 0; i < count; ++i) {
        const QString& name = nameAt(i);
        const auto size = size_t(name.size());
        for (size_t at = 0; at < size; ++at) {
            const char c = char(name[qsizetype(at)].unicode());
            out[size + at] = c;
            out[at] = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
        }
        names.emplace_back(std::string_view(out, size), std::string_view(out + size, size));
        out += 2 * size;
    }
    std::vector<qsizetype> order(names.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&](qsizetype a, qsizetype b) { return names[size_t(a)] < names[size_t(b)]; });
    return order;
}

}  // namespace

std::vector<qsizetype> orderByName(qsizetype count, const NameAt& nameAt) {
    std::vector<qsizetype> order = orderByAsciiBytes(count, nameAt);
    return order.empty() ? orderByLowered(count, nameAt) : order;
}

}  // namespace tidewick
