#include "app/cli/command_line.h"

namespace tidewick::cli {

QString folded(const QString& text, int indent, int width) {
    QString result;
    for (const QString& paragraph : text.split(u'\n')) {
        QString line;
        for (const QString& word : paragraph.split(u' ', Qt::SkipEmptyParts)) {
            if (!line.isEmpty() && indent + line.size() + 1 + word.size() > width) {
                result += QString(indent, u' ') + line + u'\n';
                line.clear();
            }
            line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
        }
        result += QString(indent, u' ') + line + u'\n';
    }
    return result;
}

namespace {

// "--kind K", "-h, --help".
QString optionNames(const OptionHelp& option) {
    QStringList names;
    for (const QString& name : option.names) {
        names.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
    }
    return names.join(QStringLiteral(", ")) +
           (option.valueName.isEmpty() ? QString() : u' ' + option.valueName);
}

}  // namespace

QString commandHelp(const Command& command) {
    QString text = QStringLiteral("usage: tidewick-cli ") + command.name + u' ' + command.synopsis +
                   QStringLiteral("\n\n") + folded(command.summary, 0) + u'\n' +
                   folded(command.description, 0) + QStringLiteral("\noptions:\n");
    QList<OptionHelp> options = command.options;
    options.append(
        {{QStringLiteral("h"), QStringLiteral("help")}, {}, QStringLiteral("Print this help.")});
    for (const OptionHelp& option : options) {
        text += QStringLiteral("  ") + optionNames(option) + u'\n';
        const QStringList lines = option.description.split(u'\n');
        text += folded(lines.first(), 6);
        for (qsizetype i = 1; i < lines.size(); ++i) {
            text += QStringLiteral("    ") + lines[i] + u'\n';  // a listed value, as it stands
        }
    }
    return text;
}

QString versionText() {
    return QStringLiteral("tidewick-cli %1.%2.%3")
        .arg(TIDEWICK_VERSION_MAJOR)
        .arg(TIDEWICK_VERSION_MINOR)
        .arg(TIDEWICK_VERSION_PATCH);
}

}  // namespace tidewick::cli
