#pragma once

#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextStream>

// The commands of tidewick-cli as one table: each command's name, synopsis, options with their
// help and the function that runs it. Dispatch, `help`, `--help` and `--version` all come from
// the table, and every command reads its arguments through the same parser.
namespace tidewick::cli {

/// One option of a command: its names ("kind"; "h" and "help"), the name of its value (empty
/// for a switch) and what it does.
struct OptionHelp {
    QStringList names;
    QString valueName;
    QString description;
};

/// A command's arguments, parsed: its options by name and its positional arguments.
class CommandLine {
public:
    CommandLine(const QCommandLineParser& parser, QString command)
        : parser_(parser), command_(std::move(command)) {}

    /// The command's name, as messages begin with it ("tidewick-cli scan: ...").
    const QString& command() const { return command_; }
    bool isSet(const QString& name) const { return parser_.isSet(name); }
    /// The value of `name` (the last one given), or empty text.
    QString value(const QString& name) const { return parser_.value(name); }
    /// Every value of a repeatable option, in order.
    QStringList values(const QString& name) const { return parser_.values(name); }
    QStringList positional() const { return parser_.positionalArguments(); }

private:
    const QCommandLineParser& parser_;
    QString command_;
};

struct Command {
    QString name;
    /// What follows the name in the synopsis: "FOLDER --kind K (--session NAME | --all)".
    QString synopsis;
    /// One line: what the command does.
    QString summary;
    /// The positional arguments and what the output is, a paragraph or two.
    QString description;
    QList<OptionHelp> options;
    int (*run)(const CommandLine& line, QTextStream& out, QTextStream& err);
};

/// `text` folded into lines of at most `width` characters, each after `indent` blanks; a line
/// end in `text` starts a new line.
QString folded(const QString& text, int indent, int width = 79);
/// The text of `tidewick-cli COMMAND --help`.
QString commandHelp(const Command& command);
/// "tidewick-cli 0.1.0".
QString versionText();

}  // namespace tidewick::cli
