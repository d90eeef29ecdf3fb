#include "readers/session_text.h"

#include <cstring>

namespace tidewick {

// Paths are nearly always plain ASCII; testing 8 bytes at a time finds that quickly.
bool isAscii(QByteArrayView bytes) {
    const char* p = bytes.data();
    qsizetype n = bytes.size();
    for (; n >= 8; p += 8, n -= 8) {
        quint64 word;
        std::memcpy(&word, p, 8);
        if (word & 0x8080808080808080ULL) {
            return false;
        }
    }
    for (; n > 0; ++p, --n) {
        if (static_cast<unsigned char>(*p) >= 0x80) {
            return false;
        }
    }
    return true;
}

bool isValidUtf8(QByteArrayView bytes) {
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        int extra = 0;
        char32_t min = 0;
        char32_t cp = 0;
        if ((c & 0xE0) == 0xC0) {
            extra = 1, min = 0x80, cp = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            extra = 2, min = 0x800, cp = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            extra = 3, min = 0x10000, cp = c & 0x07;
        } else {
            return false;
        }
        if (i + extra >= n) {  // the sequence runs past the end
            return false;
        }
        for (int k = 1; k <= extra; ++k) {
            const unsigned char cc = s[i + k];
            if ((cc & 0xC0) != 0x80) {
                return false;
            }
            cp = (cp << 6) | (cc & 0x3F);
        }
        if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            return false;
        }
        i += extra + 1;
    }
    return true;
}

QString decodeWindows1252(QByteArrayView bytes) {
    // 0x80-0x9F are the only bytes where Windows-1252 and Latin-1 differ.
    static constexpr char16_t high[32] = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        out[i] = (c >= 0x80 && c < 0xA0) ? QChar(high[c - 0x80]) : QChar(char16_t(c));
    }
    return text;
}

QString decodeSessionText(QByteArrayView bytes) {
    if (isAscii(bytes)) {
        return QString::fromLatin1(bytes);
    }
    if (isValidUtf8(bytes)) {
        return QString::fromUtf8(bytes);
    }
    return decodeWindows1252(bytes);
}

}  // namespace tidewick
