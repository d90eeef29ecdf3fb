#include "forms/core_messages.h"

#include "forms/kind_texts.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// How the messages of one kind word a file that is no session of it or that is cut short.
struct KindWords {
    const char* rejection;  // the text of a file of another kind
    bool quotesLine;        // the rejection goes on with the file's first line
    const char* name;       // the session as "This ... is incomplete" names it
};

KindWords kindWords(SessionKindId kind) {
    switch (kind) {
        case SessionKindId::Ses:
            return {" does not appear to be a valid session file.", false, "Audition session"};
        case SessionKindId::Sesx:
            return {"This is not an Adobe Audition session (.sesx) file.", false,
                    "Adobe Audition session"};
        case SessionKindId::Xml:
            return {"This is not a properly formated Adobe Audition XML file.", true,
                    "Adobe Audition XML session"};
        case SessionKindId::Rpp:
            return {"This is not a properly formated Reaper Project file", true, "REAPER project"};
        case SessionKindId::Veg:
            return {"This is not a Vegas project file.", false, "Vegas project"};
        case SessionKindId::Als:
            return {"This is not an Ableton Live set.", false, "Ableton Live set"};
        case SessionKindId::Aup:
            return {"This is not an Audacity project.", false, "Audacity project"};
        case SessionKindId::Ardour:
            return {"This is not an Ardour session.", false, "Ardour session"};
        case SessionKindId::Flp:
            return {"This is not an FL Studio project.", false, "FL Studio project"};
        case SessionKindId::Mlt:
            return {"This is not a Kdenlive or Shotcut project.", false, "MLT project"};
    }
    Q_UNREACHABLE();
}

QString rejectionText(const ReadProblem& problem) {
    const KindWords words = kindWords(problem.kind);
    const QString text = QString::fromLatin1(words.rejection);
    if (problem.kind == SessionKindId::Ses) {
        // A binary session names the file: its bytes hold no line to show.
        return u'"' + hostFileName(problem.file) + u'"' + text;
    }
    return words.quotesLine ? text + u'\n' + problem.detail : text;
}

QString title(const ReadProblem& problem) {
    const QString& caption = kindTexts(problem.kind).tabCaption;
    switch (problem.failure) {
        case ReadFailure::NotThisKind:
            if (problem.kind == SessionKindId::Ses) {
                return caption + QStringLiteral(" File Error");
            }
            [[fallthrough]];
        case ReadFailure::CutShort:
            return QStringLiteral("Processing ") + caption + QStringLiteral(" File");
        case ReadFailure::UnsupportedVersion:
            return QStringLiteral("Importing Audition Session file");
        case ReadFailure::Damaged:
        case ReadFailure::Unreadable:
        case ReadFailure::Fault:
            break;
    }
    return QStringLiteral("File Error");
}

}  // namespace

QString readProblemText(const ReadProblem& problem) {
    switch (problem.failure) {
        case ReadFailure::NotThisKind:
            return rejectionText(problem);
        case ReadFailure::UnsupportedVersion:
            return problem.detail + QStringLiteral(" is not currently supported");
        case ReadFailure::CutShort:
            return QStringLiteral("This ") + QString::fromLatin1(kindWords(problem.kind).name) +
                   QStringLiteral(" is incomplete: the file ends before its closing ") +
                   problem.detail + QStringLiteral(", so the media it names cannot all be known.");
        case ReadFailure::Damaged:
        case ReadFailure::Unreadable:
        case ReadFailure::Fault:
            break;
    }
    QString text = QStringLiteral("An error occurred accessing the selected ") +
                   kindTexts(problem.kind).tabCaption + QStringLiteral(" file.  ");
    if (problem.failure == ReadFailure::Unreadable) {
        // Named, so that a failure in a whole-folder scan says which file it was.
        text += u'"' + GetFileName(problem.file) + QStringLiteral("\": ");
    }
    return text + problem.detail;
}

MessageBoxRequest readProblemMessage(const ReadProblem& problem) {
    const MessageIcon icon =
        problem.severity == ReadSeverity::Notice ? MessageIcon::Information : MessageIcon::Critical;
    return {readProblemText(problem), title(problem), icon, MessageButtons::Ok, MessageAnswer::Ok};
}

MessageBoxRequest settingsNotSavedMessage(const Error& error) {
    return {QStringLiteral("Access to ") + error.cause +
                QStringLiteral(" failed and the current ") + programName() +
                QStringLiteral(" settings could not be saved."),
            QStringLiteral("For Information..."), MessageIcon::Information, MessageButtons::Ok,
            MessageAnswer::Ok};
}

}  // namespace tidewick
