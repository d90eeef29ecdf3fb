#pragma once

#include <QByteArrayView>
#include <QString>

// Session files carry paths as bytes. Modern REAPER and Audition write UTF-8; old Cool Edit
// sessions were written in the Windows ANSI code page.
namespace tidewick {

/// True when every byte of `bytes` is ASCII.
bool isAscii(QByteArrayView bytes);

/// True when `bytes` are well-formed UTF-8 (no overlong forms, no surrogates, nothing past
/// U+10FFFF).
bool isValidUtf8(QByteArrayView bytes);

/// Decodes path bytes of a session file: as UTF-8 when they are valid UTF-8, else as
/// Windows-1252.
QString decodeSessionText(QByteArrayView bytes);

/// Decodes bytes as Windows-1252; the five unassigned bytes map to the C1 controls, as Windows
/// itself does.
QString decodeWindows1252(QByteArrayView bytes);

}  // namespace tidewick
