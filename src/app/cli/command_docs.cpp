#include "app/cli/command_docs.h"

#include "app/cli/command_table.h"
#include "readers/session_kinds.h"

namespace tidewick::cli {

namespace {

// `text` as roff takes it: a backslash doubled, a leading dot or quote escaped, dashes as minus.
QString roff(QString text) {
    text.replace(u'\\', QStringLiteral("\\\\")).replace(u'-', QStringLiteral("\\-"));
    QStringList lines = text.split(u'\n');
    for (QString& line : lines) {
        if (line.startsWith(u'.') || line.startsWith(u'\'')) {
            line.prepend(QStringLiteral("\\&"));
        }
    }
    return lines.join(u'\n');
}

QString optionName(const QString& name) {
    return (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
}

// The values an option takes, where they are few: the kinds for --kind, "no|yes" as named.
QStringList valueChoices(const OptionHelp& option) {
    if (option.names.last() == QLatin1String("kind")) {
        QStringList kinds;
        for (const SessionKind& kind : sessionKinds()) {
            kinds.append(kind.idText);
        }
        return kinds;
    }
    return option.valueName.contains(u'|') ? option.valueName.split(u'|') : QStringList();
}

// The first sentence of a description, for a completion menu's one line.
QString firstSentence(const QString& text) {
    qsizetype end = text.size();
    for (const QString& stop : {QStringLiteral(". "), QStringLiteral("\n")}) {
        const qsizetype at = text.indexOf(stop);
        end = at >= 0 ? std::min(end, at) : end;
    }
    QString sentence = text.left(end);
    return sentence.endsWith(u'.') || sentence.endsWith(u':') ? sentence.chopped(1) : sentence;
}

// `text` inside single quotes of a shell script.
QString quoted(const QString& text) {
    return u'\'' + QString(text).replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

// A zsh _arguments description in brackets: its brackets and colons escaped.
QString zshDescription(const QString& text) {
    QString shown = firstSentence(text);
    for (const QChar special : {u'[', u']', u':', u'\\'}) {
        shown.replace(special, QStringLiteral("\\") + special);
    }
    return shown;
}

// One option as zsh's _arguments takes it: "--kind=[The kind of session]:K:(ses sesx ...)";
// repeatable options ("exclude", "only") may come again.
QString zshOption(const OptionHelp& option) {
    const QString name = optionName(option.names.last());
    const bool repeated = option.description.contains(QLatin1String("may be repeated"));
    QString written = (repeated ? QStringLiteral("*") : QString()) + name;
    if (option.valueName.isEmpty()) {
        return written + u'[' + zshDescription(option.description) + u']';
    }
    const QStringList choices = valueChoices(option);
    const QString action =
        !choices.isEmpty() ? u'(' + choices.join(u' ') + u')'
        : option.valueName == QLatin1String("PATH") || option.valueName == QLatin1String("TARGET")
            ? QStringLiteral("_files -/")
            : QString();
    return written + QStringLiteral("=[") + zshDescription(option.description) +
           QStringLiteral("]:") + option.valueName + u':' + action;
}

}  // namespace

QString manPage() {
    QString page = QStringLiteral(
        ".TH TIDEWICK\\-CLI 1\n.SH NAME\ntidewick\\-cli \\- find the media a session uses and "
        "move the rest of its folder aside\n.SH SYNOPSIS\n");
    for (const Command& command : commands()) {
        page += QStringLiteral(".B tidewick\\-cli ") + roff(command.name) + u'\n' +
                roff(command.synopsis) + QStringLiteral("\n.br\n");
    }
    page += QStringLiteral(".B tidewick\\-cli help\n[COMMAND]\n.SH COMMANDS\n");
    for (const Command& command : commands()) {
        page += QStringLiteral(".SS ") + roff(command.name) + u'\n' + roff(command.summary) +
                QStringLiteral("\n.PP\n") + roff(command.description) + u'\n';
        for (const OptionHelp& option : command.options) {
            QStringList names;
            for (const QString& name : option.names) {
                names.append(QStringLiteral("\\fB") + roff(optionName(name)) +
                             QStringLiteral("\\fR"));
            }
            page +=
                QStringLiteral(".TP\n") + names.join(QStringLiteral(", ")) +
                (option.valueName.isEmpty()
                     ? QString()
                     : QStringLiteral(" \\fI") + roff(option.valueName) + QStringLiteral("\\fR")) +
                u'\n' + roff(option.description).replace(u'\n', QStringLiteral("\n.br\n")) + u'\n';
        }
    }
    return page + QStringLiteral(".SH SEE ALSO\n.BR tidewick (1)\n");
}

QString bashCompletion() {
    QString commandNames;
    QString cases;
    for (const Command& command : commands()) {
        commandNames += command.name + u' ';
        QStringList options = {QStringLiteral("--help")};
        for (const OptionHelp& option : command.options) {
            options.append(optionName(option.names.last()));
        }
        cases += QStringLiteral("        ") + command.name + QStringLiteral(") options=\"") +
                 options.join(u' ') + QStringLiteral("\" ;;\n");
    }
    return QStringLiteral(
               "# bash completion for tidewick-cli\n"
               "_tidewick_cli() {\n"
               "    local current=${COMP_WORDS[COMP_CWORD]} options\n"
               "    if ((COMP_CWORD == 1)); then\n"
               "        COMPREPLY=($(compgen -W \"") +
           commandNames +
           QStringLiteral(
               "help --help --version\" -- \"$current\"))\n"
               "        return\n"
               "    fi\n"
               "    case ${COMP_WORDS[1]} in\n") +
           cases +
           QStringLiteral(
               "        *) options=\"\" ;;\n"
               "    esac\n"
               "    if [[ $current == -* ]]; then\n"
               "        COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
               "    else\n"
               "        COMPREPLY=($(compgen -f -- \"$current\"))\n"
               "    fi\n"
               "}\n"
               "complete -o filenames -F _tidewick_cli tidewick-cli\n");
}

QString zshCompletion() {
    QString commandList, cases;
    for (const Command& command : commands()) {
        commandList += QStringLiteral("        ") +
                       quoted(command.name + u':' + firstSentence(command.summary)) + u'\n';
        QStringList arguments = {QStringLiteral("'(- *)'{-h,--help}'[Print this help]'")};
        for (const OptionHelp& option : command.options) {
            arguments.append(quoted(zshOption(option)));
        }
        arguments.append(QStringLiteral("'*:file:_files'"));
        cases += QStringLiteral("    ") + command.name +
                 QStringLiteral(")\n        _arguments -s \\\n            ") +
                 arguments.join(QStringLiteral(" \\\n            ")) + QStringLiteral(" ;;\n");
    }
    return QStringLiteral(
               "#compdef tidewick-cli\n# zsh completion for tidewick-cli\n"
               "local -a commands\ncommands=(\n") +
           commandList + QStringLiteral("        ") +
           quoted(QStringLiteral("help:Print the commands, or one command's options")) +
           QStringLiteral(
               "\n)\n"
               "if (( CURRENT == 2 )); then\n"
               "    _describe -t commands 'tidewick-cli command' commands\n"
               "    _arguments '(- *)'{-V,--version}'[Print the version]'\n"
               "    return\n"
               "fi\n"
               "shift words\n(( CURRENT-- ))\ncase $words[1] in\n") +
           cases +
           QStringLiteral(
               "    help)\n        _describe -t commands 'tidewick-cli command' commands ;;\n"
               "esac\n");
}

QString fishCompletion() {
    QString script =
        QStringLiteral(
            "# fish completion for tidewick-cli\n"
            "complete -c tidewick-cli -f\n"
            "complete -c tidewick-cli -n __fish_use_subcommand -s V -l version -d 'Print the "
            "version'\n"
            "complete -c tidewick-cli -n __fish_use_subcommand -a help -d ") +
        quoted(QStringLiteral("Print the commands, or one command's options")) + u'\n';
    for (const Command& command : commands()) {
        const QString when = QStringLiteral(" -n ") +
                             quoted(QStringLiteral("__fish_seen_subcommand_from ") + command.name);
        script += QStringLiteral("complete -c tidewick-cli -n __fish_use_subcommand -a ") +
                  command.name + QStringLiteral(" -d ") + quoted(firstSentence(command.summary)) +
                  u'\n';
        script += QStringLiteral("complete -c tidewick-cli") + when +
                  QStringLiteral(" -F\ncomplete -c tidewick-cli") + when +
                  QStringLiteral(" -s h -l help -d 'Print this help'\n");
        for (const OptionHelp& option : command.options) {
            const QStringList choices = valueChoices(option);
            script +=
                QStringLiteral("complete -c tidewick-cli") + when + QStringLiteral(" -l ") +
                option.names.last() +
                (option.valueName.isEmpty() ? QString()
                 : choices.isEmpty()        ? QStringLiteral(" -r")
                                     : QStringLiteral(" -x -a ") + quoted(choices.join(u' '))) +
                QStringLiteral(" -d ") + quoted(firstSentence(option.description)) + u'\n';
        }
    }
    return script;
}

}  // namespace tidewick::cli
