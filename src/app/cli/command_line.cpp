#include "app/cli/command_line.h"

#include "app/cli/cli.h"
#include "sweep/media_types.h"

namespace tidewick::cli {

namespace {

const QString kKinds = QStringLiteral("ses, sesx, xml, rpp or veg");

// The media types, a line each, for the help of --type.
QString mediaTypeList() {
    const MediaTypeTable table = mediaTypeTable();
    QString list;
    for (int index = 0; index < table.FileTypeNames.size(); ++index) {
        list += QStringLiteral("\n  %1  %2").arg(index, 2).arg(mediaTypeItemText(table, index));
    }
    return list;
}

// The options of the commands that load one session folder (scan, move, copy-used).
QList<OptionHelp> folderOptions() {
    return {
        {{QStringLiteral("kind")},
         QStringLiteral("K"),
         QStringLiteral("The kind of session: ") + kKinds +
             QStringLiteral(". Without it, the kind of FOLDER's sessions when they are all of one "
                            "kind.")},
        {{QStringLiteral("session")},
         QStringLiteral("NAME"),
         QStringLiteral("The session to load: its file name in FOLDER, or its path; letter case "
                        "need not match.")},
        {{QStringLiteral("all")},
         {},
         QStringLiteral("Load every session of the kind in FOLDER (the window's \"Check All\").")},
        {{QStringLiteral("trim")},
         {},
         QStringLiteral("Ignore leading folder names: find each media file by its name (and its "
                        "record folder) in the session folder.")},
        {{QStringLiteral("type")},
         QStringLiteral("N"),
         QStringLiteral("List only the files of media type N (0, all files, by default):") +
             mediaTypeList()},
        {{QStringLiteral("keep-peaks")},
         {},
         QStringLiteral("Keep the peak files of used media out of the list.")},
        {{QStringLiteral("add-folder")},
         {},
         QStringLiteral("(rpp, veg) List the sub-folder row's folder too, as a load leaves it: "
                        "for REAPER the project's record folder.")},
        {{QStringLiteral("sub-folder")},
         QStringLiteral("PATH"),
         QStringLiteral("(rpp, veg) List the folder PATH too, picked after the load as the row's "
                        "folder button does; a relative PATH is a folder of FOLDER.")},
    };
}

QList<OptionHelp> withOptions(QList<OptionHelp> options, const QList<OptionHelp>& more) {
    options.append(more);
    return options;
}

const OptionHelp kTo{{QStringLiteral("to")},
                     QStringLiteral("TARGET"),
                     QStringLiteral("The folder the files go to (trimmed of blanks).")};

QList<Command> makeCommands() {
    const QString exits = QStringLiteral(
        "Exit status: 0 when all went well, 1 for a usage error, 2 when a session could not be "
        "read (nothing is changed), 4 when a file could not be moved or copied, 130 after "
        "Ctrl-C.");
    return {
        {QStringLiteral("media"),
         QStringLiteral("FILE [--kind K] [--verbose]"),
         QStringLiteral("Print the media paths that a session file names, one a line."),
         QStringLiteral("FILE is a session file; its kind comes from its extension unless --kind "
                        "names it."),
         {{{QStringLiteral("kind")}, QStringLiteral("K"), QStringLiteral("The kind: ") + kKinds},
          {{QStringLiteral("verbose")},
           {},
           QStringLiteral("Also print the binary session's version or REAPER's record folder.")}},
         &runMedia},
        {QStringLiteral("scan"),
         QStringLiteral("FOLDER [--kind K] (--session NAME | --all) [options] [--json]"),
         QStringLiteral("Print the used media and the files to be moved, as the window shows "
                        "them."),
         QStringLiteral("FOLDER is a session folder, or a session file (then its folder, and "
                        "--session that file).\n\n") +
             exits,
         withOptions(
             folderOptions(),
             {{{QStringLiteral("json")}, {}, QStringLiteral("Print one JSON document instead.")}}),
         &runScan},
        {QStringLiteral("move"),
         QStringLiteral("FOLDER [--kind K] (--session NAME | --all) --to TARGET [options]"),
         QStringLiteral("Move the files to be moved to TARGET, their originals to the trash."),
         QStringLiteral("Every line of \"Files to be Moved\" is moved (or those matching --only); "
                        "the run is recorded so that `restore` can undo it.\n\n") +
             exits,
         withOptions(
             folderOptions(),
             {kTo,
              {{QStringLiteral("store-in-sub-folder")},
               {},
               QStringLiteral("Move into a folder named after the session inside TARGET.")},
              {{QStringLiteral("exclude")},
               QStringLiteral("PATTERN"),
               QStringLiteral("Leave files matching PATTERN in place (the exclusion list); may "
                              "be repeated.")},
              {{QStringLiteral("only")},
               QStringLiteral("PATTERN"),
               QStringLiteral("Move only the files matching PATTERN (*, ?, #, [A-Z]; letter case "
                              "ignored); may be repeated.")},
              {{QStringLiteral("overwrite")},
               QStringLiteral("no|yes"),
               QStringLiteral("A file of the same name in the target: skip it (no, the default) "
                              "or replace it, the old one to the trash (yes).")},
              {{QStringLiteral("dry-run")},
               {},
               QStringLiteral("Print each source and its destination; change nothing.")}}),
         &runMove},
        {QStringLiteral("copy-used"),
         QStringLiteral("FOLDER [--kind K] (--session NAME | --all) --to TARGET [options]"),
         QStringLiteral("Copy the used files present on disk to TARGET."),
         QStringLiteral("TARGET is made when missing, one level deep.\n\n") + exits,
         withOptions(folderOptions(), {kTo}), &runCopyUsed},
        {QStringLiteral("restore"),
         QStringLiteral("(RECORD | --last | --list) [--dry-run] [--force]"),
         QStringLiteral("Put the files of a recorded move back where they were."),
         QStringLiteral("RECORD is the record a move named. Exit status: 0 when every file came "
                        "back, 1 for a usage error, 2 when the record cannot be read or is "
                        "refused, 4 when a file did not come back, 130 after Ctrl-C."),
         {{{QStringLiteral("last")}, {}, QStringLiteral("Restore the newest recorded move.")},
          {{QStringLiteral("list")},
           {},
           QStringLiteral("List the records: path, date, session folder, files and bytes.")},
          {{QStringLiteral("dry-run")},
           {},
           QStringLiteral("Print what would come back from where; change nothing.")},
          {{QStringLiteral("force")},
           {},
           QStringLiteral("Restore the sound lines of a record whose other lines do not check "
                          "out, naming those.")}},
         &runRestore},
        {QStringLiteral("audit"),
         QStringLiteral("ROOT [--json | --csv] [--missing]"),
         QStringLiteral("Every session folder under ROOT: what it could free, what it is "
                        "missing."),
         QStringLiteral("Exit status: 0, 1 for a usage error, 2 when a folder could not be read "
                        "(the others are reported), 130 after Ctrl-C."),
         {{{QStringLiteral("json")}, {}, QStringLiteral("Print one JSON document.")},
          {{QStringLiteral("csv")}, {}, QStringLiteral("Print CSV with a header row.")},
          {{QStringLiteral("missing")},
           {},
           QStringLiteral("List each folder's missing media with the library's files of their "
                          "name.")}},
         &runAudit},
    };
}

// `text` folded into lines of at most `width` characters, each after `indent` blanks; a line end
// in `text` starts a new line.
QString folded(const QString& text, int indent, int width = 79) {
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

const QList<Command>& commands() {
    static const QList<Command> table = makeCommands();
    return table;
}

const Command* findCommand(const QString& name) {
    for (const Command& command : commands()) {
        if (command.name == name) {
            return &command;
        }
    }
    return nullptr;
}

QString overviewHelp() {
    QString text = QStringLiteral(
        "usage: tidewick-cli COMMAND [ARGUMENTS]\n"
        "       tidewick-cli help [COMMAND] | --help | --version\n\n");
    for (const Command& command : commands()) {
        text += QStringLiteral("  tidewick-cli ") + command.name + u' ' + command.synopsis + u'\n';
        text += folded(command.summary, 6);
    }
    return text + QStringLiteral("\n'tidewick-cli COMMAND --help' explains a command's options.\n");
}

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
