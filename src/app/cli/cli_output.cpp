#include "app/cli/cli_output.h"

#include <QFile>
#include <QJsonDocument>

#include "app/cli/cli.h"

namespace tidewick::cli {

QString jsonDocument(const QString& command, QJsonObject fields) {
    fields.insert(QStringLiteral("format"), QStringLiteral("tidewick-%1-1").arg(command));
    return QString::fromUtf8(QJsonDocument(fields).toJson(QJsonDocument::Indented));
}

bool drawsProgress(QTextStream& stream) {
    const QByteArray term = qgetenv("TERM");
    return isTerminal(stream) && !term.isEmpty() && term != "dumb";
}

ProgressLine::ProgressLine(QTextStream& err, const QString& command)
    : err_(err),
      prefix_(QStringLiteral("tidewick-cli ") + command + QStringLiteral(": ")),
      live_(drawsProgress(err)) {
    clock_.start();
}

void ProgressLine::show(const std::function<QString()>& text) {
    if (!live_ || (shown_ >= 0 && clock_.elapsed() - shown_ < 100)) {
        return;
    }
    shown_ = clock_.elapsed();
    err_ << "\r\x1b[K" << prefix_ << text();
    err_.flush();
}

void ProgressLine::clear() {
    if (live_ && shown_ >= 0) {
        err_ << "\r\x1b[K";
        err_.flush();
        shown_ = -1;
    }
}

QString progressBytesText(qint64 done, qint64 total) {
    constexpr double kMegabyte = 1024.0 * 1024.0;
    return QStringLiteral("%1 of %2 MB")
        .arg(double(done) / kMegabyte, 0, 'f', 1)
        .arg(double(total) / kMegabyte, 0, 'f', 1);
}

bool outputWritten(QTextStream& stream, QTextStream& err) {
    stream.flush();
    const auto* file = qobject_cast<QFile*>(stream.device());
    const bool failed = stream.status() != QTextStream::Ok ||
                        (file != nullptr && file->error() != QFileDevice::NoError);
    if (failed) {
        err << "tidewick-cli: the output could not be written"
            << (file != nullptr && !file->errorString().isEmpty()
                    ? QStringLiteral(": ") + file->errorString()
                    : QString())
            << '\n';
        err.flush();
    }
    return !failed;
}

}  // namespace tidewick::cli
