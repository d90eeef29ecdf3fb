#include "app/cli/command_docs.h"

#include "app/cli/command_table.h"

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

}  // namespace tidewick::cli
