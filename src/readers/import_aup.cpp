#include "readers/import_aup.h"

#include <QAtomicInteger>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QXmlStreamReader>
#include <algorithm>

#include "readers/session_bytes.h"

namespace tidewick {

namespace {

// Audacity 3 marks its databases with this application id: "AUDY".
constexpr qint64 kAudacityApplicationId = 0x41554459;

SessionRead failedRead(ReadFailure failure, const QString& detail) {
    SessionRead read;
    read.outcome =
        failure == ReadFailure::NotThisKind ? ReaderOutcome::Rejected : ReaderOutcome::Failed;
    read.problem = ReadProblem{failure, SessionKindId::Aup, ReadSeverity::Error, detail, {}};
    return read;
}

// The references of one project, each file once.
class AupReferences {
public:
    bool flat = false;  // the 1.x format: blockfiles in the data folder itself
    QList<FileReference> references;
    QStringList texts;

    void element(QStringView name, const QXmlStreamAttributes& attributes) {
        const auto value = [&](const char* attribute) {
            return attributes.value(QLatin1String(attribute)).toString();
        };
        if (name == u"simpleblockfile") {
            addBlockFile(value("filename"));
        } else if (name == u"pcmaliasblockfile" || name == u"odpcmaliasblockfile") {
            addBlockFile(value("summaryfile"));
            addOutside(value("aliasfile"));
        } else if (name == u"legacyblockfile") {
            addBlockFile(value("name"));
        } else if (name == u"legacyaliasblockfile") {
            addBlockFile(value("name"));
            addOutside(value("aliaspath"));
        } else if (name == u"import") {
            addOutside(value("filename"));  // a compressed copy's audio beside the project
        }
    }

private:
    void addBlockFile(const QString& name) {
        // A blockfile is a name, never a path: one holding a separator or a step up names no
        // file of the data folder.
        if (name.isEmpty() || name.contains(u'/') || name.contains(u'\\') || name == u".." ||
            name.size() > 255) {
            return;
        }
        const QString location = blockFileLocation(name, flat);
        add({FileReference::Base::DataFolder, location, {}}, location);
    }

    void addOutside(const QString& path) {
        if (path.isEmpty() || path.size() > kMaxPathBytes) {
            return;
        }
        const bool rooted =
            path.startsWith(u'/') || path.startsWith(u'\\') || (path.size() > 1 && path[1] == u':');
        if (rooted) {
            add({FileReference::Base::None, {}, {path}}, path);
        } else {
            add({FileReference::Base::SessionFolder, path, {}}, path);
        }
    }

    void add(FileReference reference, const QString& text) {
        if (!seen_.contains(text)) {
            seen_.insert(text);
            references.append(std::move(reference));
            texts.append(text);
        }
    }

    QSet<QString> seen_;
};

}  // namespace

QString blockFileLocation(const QString& name, bool flat) {
    if (flat || name.size() < 6) {
        return name;
    }
    return name.left(3) + QStringLiteral("/d") + name.mid(3, 2) + u'/' + name;
}

SessionRead readAupSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    // The XML goes to the reader a piece at a time, so that its text is never held whole.
    constexpr qsizetype kPiece = 256 * 1024;
    QXmlStreamReader xml;
    qsizetype fed = 0;
    const auto feed = [&] {
        const qsizetype size = std::min(kPiece, bytes.size() - fed);
        if (size > 0) {
            xml.addData(bytes.sliced(fed, size).toByteArray());
            fed += size;
        }
        return size > 0;
    };
    feed();
    AupReferences found;
    int depth = 0;
    for (;;) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (xml.error() == QXmlStreamReader::PrematureEndOfDocumentError && feed()) {
            continue;
        }
        if (xml.atEnd()) {
            break;
        }
        if (token == QXmlStreamReader::EndElement) {
            --depth;
        } else if (token == QXmlStreamReader::StartElement && ++depth == 1) {
            if (xml.name() != u"project" && xml.name() != u"audacityproject") {
                return failedRead(ReadFailure::NotThisKind, {});
            }
            found.flat = xml.name() == u"audacityproject";
        } else if (token == QXmlStreamReader::StartElement) {
            found.element(xml.name(), xml.attributes());
        }
    }
    if (xml.error() != QXmlStreamReader::NoError && depth == 0 && found.texts.isEmpty() &&
        xml.lineNumber() <= 2) {
        return failedRead(ReadFailure::NotThisKind, {});  // no XML, or none of a project
    }
    if (xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
        return failedRead(ReadFailure::CutShort, found.flat ? QStringLiteral("</audacityproject>")
                                                            : QStringLiteral("</project>"));
    }
    if (xml.error() != QXmlStreamReader::NoError) {
        return failedRead(
            ReadFailure::Damaged,
            QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString()));
    }
    SessionRead read;
    read.paths = std::move(found.texts);
    read.references = std::move(found.references);
    return read;
}

std::optional<SessionRead> readAup3File(const QString& fileName) {
    if (!fileName.endsWith(QLatin1String(".aup3"), Qt::CaseInsensitive)) {
        return std::nullopt;
    }
    // Each check has a connection of its own: sessions are read on several threads at once.
    static QAtomicInteger<quint64> checks;
    const QString connection = QStringLiteral("tidewick-aup3-%1").arg(++checks);
    QString problem;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(fileName);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            problem = db.lastError().text();
        } else {
            QSqlQuery id(QStringLiteral("PRAGMA application_id"), db);
            QSqlQuery project(
                QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND "
                               "name IN ('project', 'autosave', 'sampleblocks')"),
                db);
            const bool audacity = id.next() && id.value(0).toLongLong() == kAudacityApplicationId &&
                                  project.next() && project.value(0).toInt() >= 2;
            if (!audacity) {
                problem = QStringLiteral("no Audacity project inside");
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    if (!problem.isEmpty()) {
        return failedRead(ReadFailure::Damaged, problem);
    }
    return SessionRead();
}

}  // namespace tidewick
