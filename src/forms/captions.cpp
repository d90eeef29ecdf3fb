#include "forms/captions.h"

#include "text/number_text.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// "3,145,728 bytes (3.00Mb)"
QString bytesAndMegabytes(qint64 bytes) {
    return groupedNumber(bytes) + QStringLiteral(" bytes (") + megabyteText(bytes) +
           QStringLiteral("Mb)");
}

}  // namespace

QList<UsedLine> shownUsedLines(const UsedMedia& used) {
    if (used.noMedia) {
        return {{kNoMediaText, false, {}, {}, {}}};
    }
    return used.lines;
}

QString usedFrameText(qsizetype lineCount, bool noMedia, bool wholeFolder,
                      const QString& sessionName, bool stopped) {
    if (stopped) {
        // The other files of a session read only in part are not listed; the caption says why.
        return QStringLiteral("Reading stopped: ") +
               usedFrameText(lineCount, noMedia, wholeFolder, sessionName);
    }
    if (noMedia) {
        return QStringLiteral("0 ") + kUsedFrameCaption;
    }
    if (lineCount == 0) {
        return kUsedFrameCaption;
    }
    const QString counted = QString::number(lineCount) + QLatin1Char(' ') + kUsedFrameCaption;
    if (wholeFolder) {
        // Names SES files whatever the session kind.
        return QStringLiteral(" Multiple SES files: ") + counted;
    }
    return sessionName + QStringLiteral(": ") + counted;
}

QString usedLineTooltip(const UsedLine& line, bool sessions) {
    QString text = line.text;
    if (!line.keptFile.isEmpty()) {
        const QString where =
            isHostRooted(line.keptFile) ? QString() : QStringLiteral(" in the session folder");
        text = QStringLiteral("Not found as written; kept: ") + line.keptFile + where +
               QStringLiteral(" has its name");
    }
    if (line.outside) {
        text += QStringLiteral("\nOutside the project: in an editor's library or pack");
    }
    if (sessions && !line.sessions.isEmpty()) {
        text += QStringLiteral("\nUsed by ") + line.sessions.join(QStringLiteral(", "));
    }
    return text;
}

QString keptText(const QList<KeptFile>& kept, qsizetype lines) {
    if (kept.isEmpty()) {
        return {};
    }
    QString text = QStringLiteral("kept: ") + countText(kept.size(), "file") +
                   QStringLiteral(" used by other sessions\n");
    const qsizetype shown = lines < 0 ? kept.size() : std::min(lines, kept.size());
    for (qsizetype i = 0; i < shown; ++i) {  // a line a file, its pieces appended in place
        const QStringList& users = kept[i].usedBy;
        text += visibleText(kept[i].text);
        text += QLatin1StringView("  <- ");
        text += visibleText(users.size() == 1 ? users.front() : users.join(u", "));
        text += u'\n';
    }
    if (shown < kept.size()) {
        text += QStringLiteral("... and %1 more\n").arg(kept.size() - shown);
    }
    return text;
}

QString unusedFrameText(qsizetype checked, qsizetype listed) {
    if (listed == 0) {
        return kUnusedFrameCaption;
    }
    return kUnusedFrameCaption + QStringLiteral(" - [") + QString::number(checked) +
           QLatin1Char('/') + QString::number(listed) + QLatin1Char(']');
}

QString sizesText(qint64 listed, qint64 checked) {
    return QStringLiteral("Listed Other Files: ") + bytesAndMegabytes(listed) +
           QStringLiteral(" - Selected Other Files: ") + bytesAndMegabytes(checked);
}

QString stoppedText(const UsedMedia& used, qsizetype scanned) {
    QString text = QStringLiteral("Reading stopped at \"") + used.stoppedAt + u'"';
    if (scanned > 1 && used.unread > 0) {
        text += QStringLiteral(" (%1 of %2 sessions not read)").arg(used.unread).arg(scanned);
    }
    return text + QStringLiteral(": no other files are listed");
}

}  // namespace tidewick
