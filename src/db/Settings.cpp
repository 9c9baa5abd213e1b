#include "db/Settings.h"

#include <QFile>
#include <QStringList>
#include <map>

namespace yunqi {

namespace {

// The values of [DBConfig] in an INI file as written: the text after the
// first "=" without the blanks around it, and without its double quotes when
// the whole value stands in them. QSettings would read a value with a comma
// as a list ("host,1433" becoming an empty server when read as text), end it
// at a semicolon (a comment to it) and take a backslash as an escape
// ("srv\inst" becoming "srvnst"); none of these belongs to a server name or a
// password. The last line of a key wins, as in QSettings.
std::map<QString, QString> IniValues(const QString& fileName) {
    std::map<QString, QString> values;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) return values;
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xEF\xBB\xBF")) bytes.remove(0, 3);
    bool inSection = false;
    for (const QByteArray& raw : bytes.split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inSection = line == QLatin1String("[DBConfig]");
            continue;
        }
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (!inSection || equals <= 0 || line.startsWith(QLatin1Char(';')) ||
            line.startsWith(QLatin1Char('#')))
            continue;
        QString value = line.mid(equals + 1).trimmed();
        if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) &&
            value.endsWith(QLatin1Char('"')))
            value = value.mid(1, value.size() - 2);
        values[line.left(equals).trimmed()] = value;
    }
    return values;
}

// Elsewhere (the registry) a value is one text already; a list, should one
// come, is joined back with its commas.
QString StoreValue(QSettings& store, const QString& key, const QString& fallback) {
    const QVariant value = store.value(QStringLiteral("DBConfig/") + key);
    if (!value.isValid()) return fallback;
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1Char(','));
    return value.toString();
}

}  // namespace

QString DefaultDriver() {
#ifdef Q_OS_WIN
    return QStringLiteral("SQL Server");
#else
    return QStringLiteral("FreeTDS");
#endif
}

DbSettings ReadDbSettings(QSettings& store) {
    const bool ini = store.format() == QSettings::IniFormat;
    // Values set through this object and not yet on disk are read as well.
    if (ini) store.sync();
    const std::map<QString, QString> written =
        ini ? IniValues(store.fileName()) : std::map<QString, QString>();
    const auto value = [&](const char* key, const QString& fallback) {
        const QString name = QString::fromLatin1(key);
        if (!ini) return StoreValue(store, name, fallback);
        const auto it = written.find(name);
        return it == written.end() ? fallback : it->second;
    };
    DbSettings s;
    s.Edition = value("Edition", QStringLiteral("2000"));
    s.Svr = value("Svr", QString());
    s.UID = value("UID", QString());
    s.PWD = value("PWD", QString());
    s.DBname = value("DBname", QString());
    s.Driver = value("Driver", DefaultDriver());
    s.DSN = value("DSN", QString());
    s.VarcharEncoding = value("VarcharEncoding", QString());
    return s;
}

DbSettings ReadDbSettings() {
    QSettings store(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("云栖账房"),
                    QStringLiteral("云栖账房"));
    return ReadDbSettings(store);
}

}  // namespace yunqi
