#include "db/OpenDatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "core/MessageForms.h"
#include "core/RuntimeError.h"
#include "db/ChineseTextCheck.h"
#include "db/OdbcApi.h"
#include "db/SessionState.h"

namespace yunqi {

namespace {

// By the library the driver manager loads for the name (an office may
// register FreeTDS as "TDS", or give its path), else by the name.
bool IsFreeTds(const DbSettings& s) {
    const QString library = OdbcDriverLibrary(s.Driver);
    if (!library.isEmpty()) return library.contains(QLatin1String("tdsodbc"), Qt::CaseInsensitive);
    return s.Driver.contains(QLatin1String("FreeTDS"), Qt::CaseInsensitive) ||
           s.Driver.contains(QLatin1String("tdsodbc"), Qt::CaseInsensitive);
}

// Whether freetds.conf, where FreeTDS looks for it, has a section of that
// name: FreeTDS takes a name without one as a host only through SERVER.
bool FreeTdsSection(const QString& name) {
    if (name.isEmpty()) return false;
    QStringList files;
    if (const QString conf = qEnvironmentVariable("FREETDSCONF"); !conf.isEmpty()) files << conf;
    files << QDir::homePath() + QStringLiteral("/.freetds.conf")
          << QStringLiteral("/etc/freetds/freetds.conf");
    const QString header = QLatin1Char('[') + name.toLower() + QLatin1Char(']');
    for (const QString& path : files) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) continue;
        for (const QByteArray& line : file.readAll().split('\n'))
            if (QString::fromUtf8(line).trimmed().toLower() == header) return true;
    }
    return false;
}

// A separator or a leading brace needs braces around the value. FreeTDS keeps
// blanks around an unbraced value; other drivers may not.
bool NeedsBraces(const QString& value, bool freeTds) {
    return value.contains(QLatin1Char(';')) || value.startsWith(QLatin1Char('{')) ||
           (!freeTds && value.trimmed() != value);
}

// Braced as the ODBC rule says, closing braces doubled. For FreeTDS a value
// that needs braces holds no "}" (UncarriedValue), so both readings agree.
QString OdbcValue(const QString& value, bool freeTds) {
    if (!NeedsBraces(value, freeTds)) return value;
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

QString TdsVersion(const QString& edition) {
    QString label = edition.toLower();
    label.remove(QLatin1Char(' '));
    if (label == QLatin1String("2000")) return QStringLiteral("7.1");
    if (label == QLatin1String("2005")) return QStringLiteral("7.2");
    if (label == QLatin1String("2008") || label == QLatin1String("2008r2"))
        return QStringLiteral("7.3");
    return QStringLiteral("7.4");
}

QString OdbcConnectionString(const DbSettings& s) {
    const bool freeTds = IsFreeTds(s);
    const auto value = [freeTds](const QString& v) { return OdbcValue(v, freeTds); };
    QString text;
    if (!s.DSN.isEmpty()) {
        text = QStringLiteral("DSN=") + value(s.DSN);
        if (!s.UID.isEmpty()) text += QStringLiteral(";UID=") + value(s.UID);
        if (!s.PWD.isEmpty()) text += QStringLiteral(";PWD=") + value(s.PWD);
        if (!s.DBname.isEmpty()) text += QStringLiteral(";DATABASE=") + value(s.DBname);
    } else {
        QString host = s.Svr.trimmed(), port;
        const qsizetype comma = host.indexOf(QLatin1Char(','));
        if (comma >= 0) {
            port = host.mid(comma + 1).trimmed();
            host = host.left(comma).trimmed();
        }
        // The driver manager reads this value, always braced.
        text = QStringLiteral("DRIVER={") + QString(s.Driver).replace('}', QStringLiteral("}}")) +
               QStringLiteral("};");
        if (freeTds) {
            // FreeTDS looks a name up among the sections of freetds.conf only
            // as SERVERNAME.
            const bool section = port.isEmpty() && FreeTdsSection(host);
            text +=
                (section ? QStringLiteral("SERVERNAME=") : QStringLiteral("SERVER=")) + value(host);
            if (!port.isEmpty()) text += QStringLiteral(";PORT=") + value(port);
        } else {
            // Microsoft's drivers take the port only as "host,port" and know
            // neither PORT nor TDS_Version.
            text += QStringLiteral("SERVER=") +
                    value(port.isEmpty() ? host : host + QLatin1Char(',') + port);
        }
        text += QStringLiteral(";DATABASE=") + value(s.DBname) + QStringLiteral(";UID=") +
                value(s.UID) + QStringLiteral(";PWD=") + value(s.PWD);
        if (freeTds) text += QStringLiteral(";TDS_Version=") + TdsVersion(s.Edition);
    }
    const QString app = QCoreApplication::applicationName();
    if (!app.isEmpty()) text += QStringLiteral(";APP=") + value(app);
    if (!freeTds) return text;
    // Last, so that no value of the settings ends the text: FreeTDS 1.3 reads
    // the last value to the end of what it is handed, a closing brace or the
    // terminating NUL included.
    return text + QStringLiteral(";ClientCharset=UTF-8");
}

QString UncarriedValue(const DbSettings& s) {
    if (!IsFreeTds(s)) return QString();
    const struct {
        const char* key;
        const QString& value;
        const char* remedy;
    } values[] = {
        {"DSN", s.DSN, "rename the data source."},
        {"UID", s.UID, "FreeTDS takes the user from no data source either, so it has to change."},
        {"PWD", s.PWD,
         "FreeTDS takes the password from no data source either, so it has to change."},
        {"DBname", s.DBname,
         "leave DBname empty and name the database in the Database entry of an ODBC data "
         "source (DSN)."},
    };
    for (const auto& v : values) {
        if (!NeedsBraces(v.value, true) || !v.value.contains(QLatin1Char('}'))) continue;
        return QString::fromLatin1(v.key) +
               (v.value.contains(QLatin1Char(';'))
                    ? QStringLiteral(" holds \"}\" and \";\"")
                    : QStringLiteral(" starts with \"{\" and holds \"}\"")) +
               QStringLiteral(", which the FreeTDS driver cannot take in a connection string: ") +
               QString::fromLatin1(v.remedy);
    }
    return QString();
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
            const QString uncarried = UncarriedValue(settings);
            if (!uncarried.isEmpty()) throw RuntimeError(long(ErrorCode::ProviderError), uncarried);
            const SqlDialect dialect = settings.Driver.startsWith(QLatin1String("SQLite"))
                                           ? SqlDialect::SQLite
                                           : SqlDialect::SqlServer;
            const bool gbk = settings.VarcharEncoding.trimmed().compare(QLatin1String("GBK"),
                                                                        Qt::CaseInsensitive) == 0;
            state.SessionConnection =
                DatabaseSession::OpenOdbc(OdbcConnectionString(settings), dialect);
            if (dialect == SqlDialect::SqlServer) {
                state.SessionConnection->KeepUnloggedTexts(true);
                CheckChineseText(*state.SessionConnection, gbk);
                state.SessionConnection->KeepUnloggedTexts(false);
            }
        }
        return true;
    } catch (const RuntimeError& e) {
        state.SessionConnection.reset();
        MessageForms::ShowStartup(e.description());
        return false;
    }
}

}  // namespace yunqi
