#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/name_order.h"

namespace tidewick {
namespace {

// The folder lists' order, by its definition: the names lower-cased as code units compare, then
// the names themselves. The fast ways for ASCII names (shared starts, sixteen bytes as numbers,
// names that end inside them) must give the same.
TEST(NameOrder, IsTheLowerCasedNamesOrder) {
    const QStringList lists[] = {
        {"take 10.wav", "Take 1.wav", "take 1.wav", "take 1", "TAKE 1.WAV", "take 1.wa", "take 2"},
        {"session.sesx", "take 000012.wav", "take 000002.wav", "take 0000020.wav", "t"},
        {"a long shared start 1 x", "a long shared start 1", "a long shared start 1 y", "b"},
        {"z", "\u00e9t\u00e9.wav", "Zebra", "ete.wav", "\u00c9T\u00c9.wav"},
        {"only"},
        {},
    };
    for (const QStringList& names : lists) {
        QStringList expected = names;
        std::stable_sort(expected.begin(), expected.end(), [](const QString& a, const QString& b) {
            const int c = a.toLower().compare(b.toLower());
            return c != 0 ? c < 0 : a < b;
        });
        QStringList sorted;
        for (const qsizetype at :
             orderByName(names.size(), [&](qsizetype i) -> const QString& { return names[i]; })) {
            sorted.append(names[at]);
        }
        EXPECT_EQ(sorted, expected) << names.join(u'|').toStdString();
        // A folder's ASCII names are sorted on their bytes.
        if (std::all_of(names.begin(), names.end(),
                        [](const QString& n) { return QtPrivate::isAscii(n); })) {
            std::vector<QByteArray> bytes;
            for (const QString& name : names) {
                bytes.push_back(name.toLatin1());
            }
            QStringList byBytes;
            for (const qsizetype at : orderByAsciiName(names.size(), [&](qsizetype i) {
                     return std::string_view(bytes[size_t(i)].constData(),
                                             size_t(bytes[size_t(i)].size()));
                 })) {
                byBytes.append(names[at]);
            }
            EXPECT_EQ(byBytes, expected) << names.join(u'|').toStdString();
        }
    }
}

}  // namespace
}  // namespace tidewick
