#include "db/OpenDatabase.h"

#include "core/RuntimeError.h"
#include "core/MessageForms.h"
#include "db/SessionState.h"

namespace yunqi {

namespace {

// ODBC values with a separator or a brace go in braces, closing braces doubled.
QString OdbcValue(const QString& value) {
    if (!value.contains(QLatin1Char(';')) && !value.contains(QLatin1Char('{')) &&
        !value.contains(QLatin1Char('}')) && value.trimmed() == value)
        return value;
    QString v = value;
    v.replace(QLatin1Char('}'), QStringLiteral("}}"));
    return QLatin1Char('{') + v + QLatin1Char('}');
}

// A quote inside a quoted value ends it early; the rest of the text then
// doesn't parse, and the open fails before any driver is asked.
void CheckQuotedValues(const QString& text) {
    for (const QString key :
         {QStringLiteral("Initial Catalog='"), QStringLiteral("Data Source='")}) {
        const qsizetype start = text.indexOf(key) + key.size();
        const qsizetype close = text.indexOf(QLatin1Char('\''), start);
        const qsizetype after = close + 1;
        if (after < text.size() && text[after] != QLatin1Char(';'))
            throw RuntimeError(
                long(ErrorCode::ProviderError),
                QStringLiteral("Format of the initialization string is invalid at index %1.")
                    .arg(start - key.size()));
    }
}

}  // namespace

QString ConnectionText(const QString& uid, const QString& pwd, const QString& dbName,
                       const QString& server) {
    return QStringLiteral("Provider=SQLOLEDB.1;Password=") + pwd +
           QStringLiteral(";Persist Security Info=False;User ID=") + uid +
           QStringLiteral(";Initial Catalog='") + dbName + QStringLiteral("';Data Source='") +
           server + QStringLiteral("'");
}

QString OdbcConnectionString(const DbSettings& s) {
    QString host = s.Svr, port;
    const qsizetype comma = host.indexOf(QLatin1Char(','));
    if (comma >= 0) {
        port = host.mid(comma + 1).trimmed();
        host = host.left(comma).trimmed();
    }
    QString text =
        QStringLiteral("DRIVER={") + s.Driver + QStringLiteral("};SERVER=") + OdbcValue(host);
    if (!port.isEmpty()) text += QStringLiteral(";PORT=") + OdbcValue(port);
    text += QStringLiteral(";DATABASE=") + OdbcValue(s.DBname) + QStringLiteral(";UID=") +
            OdbcValue(s.UID) + QStringLiteral(";PWD=") + OdbcValue(s.PWD) +
            QStringLiteral(";TDS_Version=7.4;ClientCharset=UTF-8");
    return text;
}

bool OpenDatabase(const DbSettings& settings) {
    SessionState& state = AppSession();
    state.SessionConnection.reset();
    state.SessionConnectionText =
        ConnectionText(settings.UID, settings.PWD, settings.DBname, settings.Svr);
    try {
        if (settings.Driver.compare(QLatin1String("SQLite"), Qt::CaseInsensitive) == 0) {
            state.SessionConnection = DatabaseSession::OpenEmbedded(settings.DBname);
            // Any file opens: a read of the department table proves a ledger.
            state.SessionConnection->Open(QStringLiteral("Select Count(*) From 职能部门new"));
        } else {
            CheckQuotedValues(state.SessionConnectionText);
            const SqlDialect dialect = settings.Driver.startsWith(QLatin1String("SQLite"))
                                           ? SqlDialect::SQLite
                                           : SqlDialect::SqlServer;
            state.SessionConnection =
                DatabaseSession::OpenOdbc(OdbcConnectionString(settings), dialect);
        }
        return true;
    } catch (const RuntimeError& e) {
        state.SessionConnection.reset();
        MessageForms::ShowStartup(e.description());
        return false;
    }
}

}  // namespace yunqi
