#include "app/cli/audit_output.h"

#include <QJsonArray>
#include <QJsonObject>

#include "app/cli/cli_output.h"
#include "audit/audit_text.h"
#include "text/number_text.h"
#include "text/path_text.h"

namespace tidewick::cli {

namespace {

// A field of a CSV row, its name's stray bytes and control characters escaped as the text
// output shows them (two names never share a cell): quoted when it holds a comma or a quote.
QString csvField(const QString& text) {
    const QString shown = visibleText(text);
    if (!shown.contains(u',') && !shown.contains(u'"')) {
        return shown;
    }
    return u'"' + QString(shown).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

int sessionsOfKind(const FolderReport& folder, const SessionKind& kind) {
    for (const auto& [id, names] : folder.sessions) {
        if (id == kind.id) {
            return int(names.size());
        }
    }
    return 0;
}

QJsonObject folderJson(const FolderReport& folder) {
    QJsonObject sessions;
    for (const auto& [id, names] : folder.sessions) {
        sessions.insert(sessionKind(id).idText, QJsonArray::fromStringList(names));
    }
    QJsonArray missing;
    for (const MissingMedia& media : folder.missing) {
        QJsonArray candidates;
        for (const Candidate& candidate : media.candidates) {
            candidates.append(QJsonObject{{QStringLiteral("path"), candidate.path},
                                          {QStringLiteral("size"), candidate.size}});
        }
        missing.append(
            QJsonObject{{QStringLiteral("text"), media.text},
                        {QStringLiteral("path"), media.path},
                        {QStringLiteral("sessions"), QJsonArray::fromStringList(media.sessions)},
                        {QStringLiteral("candidates"), candidates}});
    }
    QJsonArray kept;
    for (const KeptElsewhere& file : folder.keptElsewhere) {
        kept.append(QJsonObject{{QStringLiteral("path"), file.path},
                                {QStringLiteral("size"), file.size},
                                {QStringLiteral("usedBy"), file.usedBy}});
    }
    return {{QStringLiteral("folder"), folder.folder},
            {QStringLiteral("sessions"), sessions},
            {QStringLiteral("used"), folder.used},
            {QStringLiteral("missing"), folder.missing.size()},
            {QStringLiteral("reclaimableFiles"), folder.reclaimable.size()},
            {QStringLiteral("reclaimableBytes"), folder.reclaimableBytes},
            {QStringLiteral("keptElsewhere"), kept},
            {QStringLiteral("stopped"), folder.stopped},
            {QStringLiteral("reason"), folder.reason},
            {QStringLiteral("missingMedia"), missing}};
}

}  // namespace

QString auditText(const LibraryReport& report, bool missing) {
    QString text;
    for (const FolderReport& folder : report.folders) {
        text += visibleText(folder.folder) + QStringLiteral("  ");
        if (folder.stopped) {
            text += QStringLiteral("stopped: ") + visibleText(folder.reason);
        } else {
            text += QStringLiteral("reclaimable ") + reclaimableText(folder);
        }
        text += QStringLiteral("  sessions ") + sessionsText(folder) + QStringLiteral("  used ") +
                groupedNumber(folder.used) + QStringLiteral("  missing ") +
                groupedNumber(folder.missing.size()) + u'\n';
        for (const MissingMedia& media : missing ? folder.missing : QList<MissingMedia>()) {
            text += QStringLiteral("  missing ") + visibleText(media.text) + u'\n';
            for (const Candidate& candidate : media.candidates) {
                text += QStringLiteral("    may be ") + visibleText(candidate.path) +
                        QStringLiteral("  ") + bytesText(candidate.size) + u'\n';
            }
            if (media.candidates.isEmpty()) {
                text += QStringLiteral("    no file of that name in the library\n");
            }
        }
    }
    return text + totalsLine(report) + u'\n';
}

QString auditCsv(const LibraryReport& report) {
    QString text = QStringLiteral("folder,sessions");
    for (const SessionKind& kind : sessionKinds()) {
        text += u',' + kind.idText;
    }
    text += QStringLiteral(",used,missing,reclaimableFiles,reclaimableBytes,stopped,reason\n");
    for (const FolderReport& folder : report.folders) {
        text += csvField(folder.folder) + u',' + QString::number(folder.sessionCount());
        for (const SessionKind& kind : sessionKinds()) {
            text += u',' + QString::number(sessionsOfKind(folder, kind));
        }
        text += u',' + QString::number(folder.used) + u',' +
                QString::number(folder.missing.size()) + u',' +
                QString::number(folder.reclaimable.size()) + u',' +
                QString::number(folder.reclaimableBytes) + u',' +
                (folder.stopped ? QStringLiteral("yes") : QStringLiteral("no")) + u',' +
                csvField(folder.reason) + u'\n';
    }
    return text;
}

QString auditJson(const LibraryReport& report) {
    QJsonArray folders;
    for (const FolderReport& folder : report.folders) {
        folders.append(folderJson(folder));
    }
    const QJsonObject totals{{QStringLiteral("folders"), report.folders.size()},
                             {QStringLiteral("sessions"), report.sessions},
                             {QStringLiteral("used"), report.used},
                             {QStringLiteral("missing"), report.missing},
                             {QStringLiteral("reclaimableFiles"), report.reclaimableFiles},
                             {QStringLiteral("reclaimableBytes"), report.reclaimableBytes},
                             {QStringLiteral("stopped"), report.stopped},
                             {QStringLiteral("cancelled"), report.cancelled}};
    return jsonDocument(QStringLiteral("audit"), {{QStringLiteral("root"), report.root},
                                                  {QStringLiteral("folders"), folders},
                                                  {QStringLiteral("totals"), totals}});
}

}  // namespace tidewick::cli
