#include "platform/name_order.h"

#include <algorithm>
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

// The length of the start that every name's first (lowered) form shares.
size_t sharedStart(const std::vector<std::pair<std::string_view, std::string_view>>& names) {
    if (names.empty()) {
        return 0;
    }
    std::string_view shared = names.front().first;
    for (const auto& name : names) {
        const auto ends =
            std::mismatch(shared.begin(), shared.end(), name.first.begin(), name.first.end());
        shared = shared.substr(0, size_t(ends.first - shared.begin()));
    }
    return shared.size();
}

// The order of ASCII names, each given as its lower-cased and its written form.
std::vector<qsizetype> orderOfAsciiNames(
    const std::vector<std::pair<std::string_view, std::string_view>>& names) {
    // Names of one folder tend to share their start ("Take 0012.wav"): past the part that all
    // share, sixteen bytes of each, as two numbers, order nearly every pair without a comparison
    // of the bytes. A name that ends within them is padded with zeros, which sorts it before
    // every longer name that it starts; equal numbers leave the order to the names themselves.
    const size_t shared = sharedStart(names);
    struct Key {
        quint64 first, second;
        qsizetype at;
    };
    std::vector<Key> keys;
    keys.reserve(names.size());
    for (size_t i = 0; i < names.size(); ++i) {
        const std::string_view lowered = names[i].first;
        const auto bytesFrom = [&](size_t from) {
            quint64 key = 0;
            for (size_t at = from; at < from + 8; ++at) {
                key =
                    key << 8 | (at < lowered.size() ? static_cast<unsigned char>(lowered[at]) : 0U);
            }
            return key;
        };
        keys.push_back({bytesFrom(shared), bytesFrom(shared + 8), qsizetype(i)});
    }
    std::sort(keys.begin(), keys.end(), [&](const Key& a, const Key& b) {
        if (a.first != b.first || a.second != b.second) {
            return a.first != b.first ? a.first < b.first : a.second < b.second;
        }
        return names[size_t(a.at)] < names[size_t(b.at)];
    });
    std::vector<qsizetype> order;
    order.reserve(keys.size());
    for (const Key& key : keys) {
        order.push_back(key.at);
    }
    return order;
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? char(c + 32) : c;
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
            out[at] = lowered(c);
        }
        names.emplace_back(std::string_view(out, size), std::string_view(out + size, size));
        out += 2 * size;
    }
    return orderOfAsciiNames(names);
}

}  // namespace

std::vector<qsizetype> orderByName(qsizetype count, const NameAt& nameAt) {
    std::vector<qsizetype> order = orderByAsciiBytes(count, nameAt);
    return order.empty() ? orderByLowered(count, nameAt) : order;
}

std::vector<qsizetype> orderByAsciiName(qsizetype count,
                                        const std::function<std::string_view(qsizetype)>& nameAt) {
    qsizetype total = 0;
    for (qsizetype i = 0; i < count; ++i) {
        total += qsizetype(nameAt(i).size());
    }
    std::string bytes(size_t(total), '\0');
    std::vector<std::pair<std::string_view, std::string_view>> names;  // lowered, as written
    names.reserve(size_t(count));
    char* out = bytes.data();
    for (qsizetype i = 0; i < count; ++i) {
        const std::string_view name = nameAt(i);
        std::transform(name.begin(), name.end(), out, lowered);
        names.emplace_back(std::string_view(out, name.size()), name);
        out += name.size();
    }
    return orderOfAsciiNames(names);
}

}  // namespace tidewick
