#include "app/cli/command_table.h"

#include "app/cli/commands.h"
#include "readers/session_kinds.h"
#include "sweep/media_types.h"

namespace tidewick::cli {

namespace {

// The media types, a line each, for the help of --type.
QString mediaTypeList() {
    const MediaTypeTable& table = mediaTypeTable();
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
         QStringLiteral("The kind of session: ") + sessionKindIdTexts() +
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

const OptionHelp kOverwrite{{QStringLiteral("overwrite")},
                            QStringLiteral("no|yes"),
                            QStringLiteral("A file of the same name in the target: skip it (no, "
                                           "the default) or replace it, the old one to the trash "
                                           "(yes).")};

const OptionHelp kDryRun{{QStringLiteral("dry-run")},
                         {},
                         QStringLiteral("Print each source and its destination; change nothing.")};

const OptionHelp kJsonSummary{{QStringLiteral("json")},
                              {},
                              QStringLiteral("Print one JSON document of what became of each "
                                             "file instead of the log.")};

// The exit status of the commands that load a folder.
QString exitStatus() {
    return QStringLiteral(
        "Exit status: 0 when all went well, 1 for a usage error, 2 when a session could not be "
        "read (nothing is changed), 4 when a file could not be moved or copied, 130 after "
        "Ctrl-C.");
}

Command mediaCommand() {
    return {
        QStringLiteral("media"),
        QStringLiteral("FILE [--kind K] [--verbose]"),
        QStringLiteral("Print the media paths that a session file names, one a line."),
        QStringLiteral("FILE is a session file; its kind comes from its extension unless --kind "
                       "names it."),
        {{{QStringLiteral("kind")},
          QStringLiteral("K"),
          QStringLiteral("The kind: ") + sessionKindIdTexts()},
         {{QStringLiteral("verbose")},
          {},
          QStringLiteral("Also print the binary session's version or REAPER's record folder.")}},
        &runMedia};
}

Command scanCommand() {
    const QString exits = exitStatus();
    return {
        QStringLiteral("scan"),
        QStringLiteral("FOLDER [--kind K] (--session NAME | --all) [options] [--json]"),
        QStringLiteral("Print the used media and the files to be moved, as the window shows "
                       "them."),
        QStringLiteral("FOLDER is a session folder, or a session file (then its folder, and "
                       "--session that file).\n\n") +
            exits,
        withOptions(
            folderOptions(),
            {{{QStringLiteral("json")}, {}, QStringLiteral("Print one JSON document instead.")}}),
        &runScan};
}

Command moveCommand() {
    const QString exits = exitStatus();
    return {
        QStringLiteral("move"),
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
             kOverwrite,
             kDryRun,
             kJsonSummary}),
        &runMove};
}

Command copyUsedCommand() {
    const QString exits = exitStatus();
    return {QStringLiteral("copy-used"),
            QStringLiteral("FOLDER [--kind K] (--session NAME | --all) --to TARGET [options]"),
            QStringLiteral("Copy the used files present on disk to TARGET."),
            QStringLiteral("TARGET is made when missing, one level deep. A used file that is not "
                           "on disk is named on stderr.\n\n") +
                exits,
            withOptions(folderOptions(), {kTo, kOverwrite, kDryRun, kJsonSummary}),
            &runCopyUsed};
}

Command restoreCommand() {
    return {
        QStringLiteral("restore"),
        QStringLiteral("(RECORD | --last | --list [--json]) [--dry-run] [--force]"),
        QStringLiteral("Put the files of a recorded move back where they were."),
        QStringLiteral("RECORD is the record a move named. Exit status: 0 when every file came "
                       "back, 1 for a usage error, 2 when the record cannot be read or is "
                       "refused, 4 when a file did not come back, 130 after Ctrl-C."),
        {{{QStringLiteral("last")}, {}, QStringLiteral("Restore the newest recorded move.")},
         {{QStringLiteral("list")},
          {},
          QStringLiteral("List the records, newest first: path, date, session folder, files "
                         "and bytes, and whether the run was cut short or its files are "
                         "back (restored, partly restored).")},
         {{QStringLiteral("json")}, {}, QStringLiteral("With --list, print one JSON document.")},
         {{QStringLiteral("dry-run")},
          {},
          QStringLiteral("Print what would come back from where; change nothing.")},
         {{QStringLiteral("force")},
          {},
          QStringLiteral("Restore the sound lines of a record whose other lines do not check "
                         "out, naming those.")}},
        &runRestore};
}

Command auditCommand() {
    return {QStringLiteral("audit"),
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
            &runAudit};
}

}  // namespace

const QList<Command>& commands() {
    static const QList<Command> table = {mediaCommand(),    scanCommand(),    moveCommand(),
                                         copyUsedCommand(), restoreCommand(), auditCommand()};
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

}  // namespace tidewick::cli
