#pragma once

#include <QList>
#include <QString>

#include "sweep/sweep.h"

// The captions of the two list frames, the used list's placeholder and the information line,
// made from what a sweep found, as the window and the command line show them.
namespace tidewick {

/// The caption of the used-media frame, the placeholder line of a session without media and
/// the caption of the other-files frame.
inline const QString kUsedFrameCaption =
    QStringLiteral("Media File(s) Used  (NB: Files with a check mark exist on Disk)");
inline const QString kNoMediaText = QStringLiteral("<no media files found>");
inline const QString kUnusedFrameCaption = QStringLiteral("Files to be Moved");

/// The used list's lines as they are shown: the lines of `used`, or for a single session without
/// media the placeholder line alone (unchecked).
QList<UsedLine> shownUsedLines(const UsedMedia& used);

/// The used-media frame's caption for `lineCount` lines: "mix.ses: 3 Media File(s) Used ...";
/// with `noMedia` (the list shows the placeholder alone) "0 Media File(s) Used ..."; after a
/// load that a failed read stopped it says so first.
QString usedFrameText(qsizetype lineCount, bool noMedia, bool wholeFolder,
                      const QString& sessionName, bool stopped = false);
/// The tooltip of a used line: its text, or for a line not found as written whose file was
/// found by its name, where: "Not found as written; kept: take1.wav in the session folder has
/// its name". With `sessions`, the sessions that use it follow ("Used by a.ses, b.ses").
QString usedLineTooltip(const UsedLine& line, bool sessions = false);
/// What is kept and why, a line each: "kept: 3 files used by other sessions", then
/// "vox.wav  <- mix.sesx"; at most `lines` files, then how many more. Empty when none is kept.
QString keptText(const QList<KeptFile>& kept, qsizetype lines = -1);
/// The other-files frame's caption: "Files to be Moved - [2/5]".
QString unusedFrameText(qsizetype checked, qsizetype listed);
/// The information line: "Listed Other Files: 1,024 bytes (0.00Mb) - Selected Other Files: ...".
QString sizesText(qint64 listed, qint64 checked);
/// The information line after a load that stopped at a session it could not read, instead of
/// the sizes: where it stopped, how many sessions were not read, and that no other files show.
QString stoppedText(const UsedMedia& used, qsizetype scanned);

}  // namespace tidewick
