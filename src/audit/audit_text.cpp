#include "audit/audit_text.h"

#include <QStringList>

#include "text/number_text.h"

namespace tidewick {

QString bytesText(qint64 bytes) {
    return groupedNumber(bytes) + QStringLiteral(" bytes (") + megabyteText(bytes) +
           QStringLiteral("Mb)");
}

QString sessionsText(const FolderReport& folder) {
    QStringList kinds;
    for (const auto& [id, names] : folder.sessions) {
        kinds.append(sessionKind(id).idText.toUpper() + u' ' + QString::number(names.size()));
    }
    return kinds.join(QStringLiteral(", "));
}

QString reclaimableText(const FolderReport& folder) {
    return groupedNumber(folder.reclaimable.size()) + QStringLiteral(" file(s) ") +
           bytesText(folder.reclaimableBytes);
}

QString totalsLine(const LibraryReport& report) {
    QString line = QStringLiteral("Totals: ") + groupedNumber(report.folders.size()) +
                   QStringLiteral(" folder(s), ") + groupedNumber(report.sessions) +
                   QStringLiteral(" session(s), ") + groupedNumber(report.used) +
                   QStringLiteral(" used, ") + groupedNumber(report.missing) +
                   QStringLiteral(" missing, reclaimable ") +
                   groupedNumber(report.reclaimableFiles) + QStringLiteral(" file(s) ") +
                   bytesText(report.reclaimableBytes);
    if (report.stopped > 0) {
        line += QStringLiteral("; ") + groupedNumber(report.stopped) +
                QStringLiteral(" folder(s) stopped");
    }
    if (report.cancelled) {
        line += QStringLiteral("; cancelled before the last folders");
    }
    return line;
}

QString progressText(const AuditProgress& progress, qint64 elapsedMs) {
    return (progress.walking ? QStringLiteral("walking ") : QStringLiteral("auditing ")) +
           groupedNumber(progress.folders) + u' ' +
           (progress.walking ? QStringLiteral("folder(s), ")
                             : QStringLiteral("of ") + groupedNumber(progress.sessionFolders) +
                                   QStringLiteral(" session folder(s), ")) +
           groupedNumber(progress.files) + QStringLiteral(" file(s), ") +
           megabyteText(progress.bytes) + QStringLiteral("Mb, ") +
           QString::number(elapsedMs / 1000) + QStringLiteral(" s");
}

}  // namespace tidewick
