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

// The same order when every name is ASCII (else empty), worked out on the names' bytes.
std::vector<qsizetype> orderByAsciiBytes(qsizetype count, const NameAt& nameAt) {
    qsizetype total = 0;
    for (qsizetype i = 0; i < count; ++i) {
        if (!QtPrivate::isAscii(nameAt(i))) {
            return {};
        }
        total += nameAt(i).size();
    }
    std::string bytes(size_t(total), '\0');
    std::vector<std::string_view> written;
    written.reserve(size_t(count));
    char* out = bytes.data();
    for (qsizetype i = 0; i < count; ++i) {
        const QString& name = nameAt(i);
        std::transform(name.cbegin(), name.cend(), out, [](QChar c) { return char(c.unicode()); });
        written.emplace_back(out, size_t(name.size()));
        out += name.size();
    }
    return orderByAsciiName(count, [&written](qsizetype at) { return written[size_t(at)]; });
}

}  // namespace

std::vector<qsizetype> orderByName(qsizetype count, const NameAt& nameAt) {
    std::vector<qsizetype> order = orderByAsciiBytes(count, nameAt);
    return order.empty() ? orderByLowered(count, nameAt) : order;
}

// A byte of an ASCII name compares as its code unit does, and each name lower-cased, held in one
// buffer, is its bytes with A-Z moved.
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
        std::transform(name.begin(), name.end(), out,
                       [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
        names.emplace_back(std::string_view(out, name.size()), name);
        out += name.size();
    }
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

}  // namespace tidewick
