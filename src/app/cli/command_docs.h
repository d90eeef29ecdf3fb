#pragma once

#include <QString>

// The manual page and the shell completion of tidewick-cli, made from its table of commands, so
// that what the help says is said once.
namespace tidewick::cli {

/// tidewick-cli(1) in roff (man page) form.
QString manPage();
/// A bash completion script: the commands, and each command's options.
QString bashCompletion();
/// A zsh completion function (`_tidewick-cli`): the commands with what they do, and each
/// command's options with theirs and the values they take.
QString zshCompletion();
/// A fish completion script, with the same.
QString fishCompletion();

}  // namespace tidewick::cli
