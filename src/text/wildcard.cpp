#include "text/wildcard.h"

#include <algorithm>

#include "text/letter_case.h"

namespace tidewick {

namespace {

struct Token {
    enum Kind { Literal, AnyOne, AnyRun, Digit, List, Empty } kind;
    QChar literal;
    QStringView list;  // the text between "[" (or "[!") and "]"
    bool negated = false;
};

// Reads the token at `pos` and moves `pos` past it.
Token nextToken(QStringView pattern, qsizetype& pos) {
    const QChar c = pattern[pos++];
    switch (c.unicode()) {
        case u'?':
            return {Token::AnyOne, {}, {}};
        case u'*':
            return {Token::AnyRun, {}, {}};
        case u'#':
            return {Token::Digit, {}, {}};
        case u'[': {
            const qsizetype close = pattern.indexOf(u']', pos);
            if (close < 0) {
                return {Token::Literal, c, {}};
            }
            QStringView body = pattern.mid(pos, close - pos);
            pos = close + 1;
            if (body.isEmpty()) {
                return {Token::Empty, {}, {}};
            }
            const bool negated = body.front() == u'!';
            if (negated) {
                body = body.mid(1);
            }
            return {Token::List, {}, body, negated};
        }
        default:
            return {Token::Literal, c, {}};
    }
}

bool inList(QChar c, QStringView list) {
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (i + 2 < list.size() && list[i + 1] == u'-') {
            if (list[i] <= c && c <= list[i + 2]) {
                return true;
            }
            i += 2;
        } else if (list[i] == c) {
            return true;
        }
    }
    return false;
}

// Matches one character against a single-character token.
bool matchesOne(const Token& token, QChar c) {
    switch (token.kind) {
        case Token::Literal:
            return token.literal == c;
        case Token::AnyOne:
            return true;
        case Token::Digit:
            return c >= u'0' && c <= u'9';
        case Token::List:
            return inList(c, token.list) != token.negated;
        default:
            return false;
    }
}

}  // namespace

bool wildcardMatch(QStringView text, QStringView pattern) {
    // The most common pattern, "*" and a plain ending ("*.SESX"), asks only how the text ends.
    if (!pattern.isEmpty() && pattern.front() == u'*') {
        const QStringView ending = pattern.sliced(1);
        if (std::none_of(ending.begin(), ending.end(), [](QChar c) {
                return c == u'*' || c == u'?' || c == u'#' || c == u'[';
            })) {
            return text.endsWith(ending);
        }
    }
    // Greedy matching with one backtrack point, the last "*": linear in practice and never
    // worse than |text| * |pattern|.
    qsizetype t = 0;
    qsizetype p = 0;
    qsizetype starPattern = -1;
    qsizetype starText = 0;
    while (t < text.size()) {
        if (p < pattern.size()) {
            qsizetype next = p;
            const Token token = nextToken(pattern, next);
            if (token.kind == Token::AnyRun) {
                starPattern = next;
                starText = t;
                p = next;
                continue;
            }
            if (token.kind == Token::Empty) {
                p = next;
                continue;
            }
            if (matchesOne(token, text[t])) {
                p = next;
                ++t;
                continue;
            }
        }
        if (starPattern < 0) {
            return false;
        }
        p = starPattern;
        t = ++starText;
    }
    while (p < pattern.size()) {
        const Token token = nextToken(pattern, p);
        if (token.kind != Token::AnyRun && token.kind != Token::Empty) {
            return false;
        }
    }
    return true;
}

bool wildcardMatchesAny(const QString& text, const QStringList& patterns) {
    const UpperCased upper(text);
    return std::any_of(patterns.cbegin(), patterns.cend(), [&upper](const QString& pattern) {
        return wildcardMatch(upper.view(), UpperCased(pattern).view());
    });
}

}  // namespace tidewick
