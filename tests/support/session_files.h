#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QStringList>

#include "readers/session_kinds.h"

namespace tidewick::test {

/// The bytes of a small session of `kind` that names `paths` in order, laid out the way each
/// kind's program writes it (a binary session says it is "Audition 3.0"; a Vegas project holds
/// its paths in UTF-16LE, every other kind in UTF-8).
QByteArray sessionBytes(SessionKindId kind, const QStringList& paths);

/// The same, with each path given as the bytes the session is to hold.
QByteArray sessionBytesOf(SessionKindId kind, const QByteArrayList& paths);

/// `text` as UTF-16LE with its closing NUL, as FL Studio 12 and later write texts.
QByteArray utf16(const QString& text);

/// An FL Studio event: its id and its data (1, 2 or 4 bytes below id 192).
struct FlpEvent {
    quint8 id;
    QByteArray data;
};
/// An FL Studio project of `events`, with a header of one channel; the data of an id of 192 or
/// more follows its length.
QByteArray flpProject(const QList<FlpEvent>& events);

/// A wave block of an Audition XML export: for each path line an entry of its opening line and
/// 21 more, the 18th of which is the path line.
QByteArrayList xmlWaveBlock(const QByteArrayList& pathLines);

/// A file element line of a SESX session naming `path`.
QByteArray sesxFileElement(const QByteArray& path, const QByteArray& indent = "    ");

/// What a Vegas project holds after a run of four 0xFF bytes for a media record: 4 bytes the
/// scan passes over, the type value, 36 more bytes, then the path bytes.
QByteArray vegRecord(qint32 type, const QByteArray& path);

/// Writes `bytes` to `path`, creating its folders; false when that fails.
bool writeFile(const QString& path, const QByteArray& bytes = {});

/// What the file `path` holds; empty when it cannot be read.
QByteArray readFile(const QString& path);

}  // namespace tidewick::test
