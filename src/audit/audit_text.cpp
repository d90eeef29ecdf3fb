#include "audit/audit_text.h"

#include <QStringList>

#include "text/number_text.h"

namespace tidewick {

QString bytesText(qint64 bytes) {
    return countText(bytes, "byte") + QStringLiteral(" (") + megabyteText(bytes) +
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
    return countText(folder.reclaimable.size(), "file") + u' ' + bytesText(folder.reclaimableBytes);
}

QString totalsLine(const LibraryReport& report) {
    QString line = QStringLiteral("Totals: ") + countText(report.folders.size(), "folder") +
                   QStringLiteral(", ") + countText(report.sessions, "session") +
                   QStringLiteral(", ") + groupedNumber(report.used) + QStringLiteral(" used, ") +
                   groupedNumber(report.missing) + QStringLiteral(" missing, reclaimable ") +
                   countText(report.reclaimableFiles, "file") + u' ' +
                   bytesText(report.reclaimableBytes);
    if (report.stopped > 0) {
        line +=
            QStringLiteral("; ") + countText(report.stopped, "folder") + QStringLiteral(" stopped");
    }
    if (report.cancelled) {
        line += QStringLiteral("; cancelled before the last folders");
    }
    return line;
}

QString progressText(const AuditProgress& progress, qint64 elapsedMs) {
    return (progress.walking ? QStringLiteral("walking ") + countText(progress.folders, "folder")
                             : QStringLiteral("auditing ") + groupedNumber(progress.folders) +
                                   QStringLiteral(" of ") +
                                   countText(progress.sessionFolders, "session folder")) +
           QStringLiteral(", ") + countText(progress.files, "file") + QStringLiteral(", ") +
           megabyteText(progress.bytes) + QStringLiteral("Mb, ") +
           QString::number(elapsedMs / 1000) + QStringLiteral(" s");
}

}  // namespace tidewick
