#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>
#include <QTextStream>
#include <functional>

// How the commands speak to a script and to a person: JSON documents that say what they are, and
// a progress line that only a terminal able to draw it sees.
namespace tidewick::cli {

/// The JSON document of `command`'s output: `fields` with "format": "tidewick-<command>-1", the
/// version a script checks before it reads on. A field whose meaning changes takes a new version.
QString jsonDocument(const QString& command, QJsonObject fields);

/// Whether `stream` goes to a terminal that can redraw a line: a terminal whose TERM is set and
/// is not "dumb".
bool drawsProgress(QTextStream& stream);

/// A progress line on stderr, a few times a second, on one line that the next one overwrites;
/// nothing at all where drawsProgress() says no (a file, a pipe, a dumb terminal).
class ProgressLine {
public:
    ProgressLine(QTextStream& err, const QString& command);

    /// Shows the text that `text` makes, unless a line was shown less than a tenth of a second ago
    /// (or none is drawn): then it is not made at all.
    void show(const std::function<QString()>& text);
    /// Takes the line away before the command prints on.
    void clear();

private:
    QTextStream& err_;
    QString prefix_;
    bool live_ = false;
    QElapsedTimer clock_;
    qint64 shown_ = -1;
};

/// "120.5 of 300.0 MB": a run's bytes done of its bytes in all, for a progress line.
QString progressBytesText(qint64 done, qint64 total);

/// Whether everything written to `stream` reached its file; says so on `err` when not (a full
/// disk), after flushing the stream. A closed pipe never gets here: SIGPIPE ends the program
/// quietly, as it does every tool of a pipeline.
bool outputWritten(QTextStream& stream, QTextStream& err);

}  // namespace tidewick::cli
