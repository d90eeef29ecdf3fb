#pragma once

#include <QStringList>
#include <QStringView>

namespace tidewick {

/// Whole-text pattern match: "?" is one character, "*" any run (also none), "#" one digit,
/// "[abc]" or "[A-Z]" one character of the list, "[!...]" one character not in it; everything
/// else stands for itself. Letter case counts: callers upper-case both sides to ignore it.
/// A "[" without its "]" stands for itself; "[]" stands for no character at all.
bool wildcardMatch(QStringView text, QStringView pattern);

/// True when `text` matches one of `patterns`, ignoring letter case.
bool wildcardMatchesAny(const QString& text, const QStringList& patterns);

}  // namespace tidewick
