#include "text/letter_case.h"

#include <algorithm>

namespace tidewick {

bool isAscii(QStringView text) {
    char16_t bits = 0;
    for (const QChar c : text) {
        bits |= c.unicode();
    }
    return bits < 0x80;
}

namespace {

// Whether `text` holds a character from `first` to `last` (ASCII letters).
bool holdsAny(QStringView text, char16_t first, char16_t last) {
    for (const QChar c : text) {
        if (c.unicode() >= first && c.unicode() <= last) {
            return true;
        }
    }
    return false;
}

// `text`, ASCII alone, with each letter from `first` to `last` moved by `shift` into `out`.
void shifted(QStringView text, char16_t first, char16_t last, int shift, char16_t* out) {
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        *out++ = unit >= first && unit <= last ? char16_t(unit + shift) : unit;
    }
}

// Both conversions: Qt's own for text beyond ASCII, else a copy only when a letter changes.
// `whole`, when given, is `text` as a string of its own, shared rather than copied.
template <typename Convert>
QString converted(QStringView text, const QString* whole, char16_t first, char16_t last, int shift,
                  Convert convert) {
    if (!isAscii(text)) {
        return convert(whole != nullptr ? *whole : text.toString());
    }
    if (!holdsAny(text, first, last)) {
        return whole != nullptr ? *whole : text.toString();
    }
    QString out(text.size(), Qt::Uninitialized);
    shifted(text, first, last, shift, reinterpret_cast<char16_t*>(out.data()));
    return out;
}

QString qtUpper(const QString& text) {
    return text.toUpper();
}

QString qtLower(const QString& text) {
    return text.toLower();
}

}  // namespace

QString upperCase(const QString& text) {
    return converted(text, &text, u'a', u'z', -32, qtUpper);
}

QString upperCase(QStringView text) {
    return converted(text, nullptr, u'a', u'z', -32, qtUpper);
}

QString lowerCase(const QString& text) {
    return converted(text, &text, u'A', u'Z', 32, qtLower);
}

bool sameUpperCase(QStringView a, QStringView b) {
    if (!isAscii(a) || !isAscii(b)) {
        return upperCase(a.toString()) == upperCase(b.toString());
    }
    const auto upper = [](QChar c) {
        return c >= u'a' && c <= u'z' ? char16_t(c.unicode() - 32) : c.unicode();
    };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [&](QChar x, QChar y) {
               return upper(x) == upper(y);
           });
}

bool endsWithIgnoringCase(QStringView text, QStringView ending) {
    if (ending.size() > text.size()) {
        return false;
    }
    const QStringView tail = text.last(ending.size());
    if (!isAscii(ending)) {
        return tail.compare(ending, Qt::CaseInsensitive) == 0;
    }
    const auto lowered = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; };
    // From the end, where names differ most. A character beyond ASCII may fold to an ASCII
    // letter (the Kelvin sign to "k"), so Qt's own comparison judges a tail that holds one; an
    // ASCII character that differs from the ending's at its place decides before that.
    for (qsizetype i = ending.size(); i-- > 0;) {
        const char16_t unit = tail[i].unicode();
        if (unit >= 0x80) {
            return tail.compare(ending, Qt::CaseInsensitive) == 0;
        }
        if (lowered(unit) != lowered(ending[i].unicode())) {
            return false;
        }
    }
    return true;
}

UpperCased::UpperCased(QStringView text) : ascii_(isAscii(text)) {
    if (ascii_) {
        buffer_.resize(text.size());
        shifted(text, u'a', u'z', -32, buffer_.data());
    } else {
        other_ = text.toString().toUpper();
    }
}

}  // namespace tidewick
