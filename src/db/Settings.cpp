#include "db/Settings.h"

#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>
#include <map>

#include "core/os/FileSystem.h"
#include "db/os/SettingsStore.h"

namespace yunqi {

namespace {

// The whole file; nothing for a missing one.
QByteArray ReadSettingsFile(const QString& fileName) {
    const auto unreadable = [&fileName](os::Error error) {
        return SettingsUnreadable(ErrorCode::PathFileAccess,
                                  fileName + QStringLiteral(": ") + os::Reason(error));
    };
    if (!QFileInfo::exists(fileName)) return QByteArray();
    if (os::IsFolder(fileName)) throw unreadable(os::IsAFolder());
    os::Error error = 0;
    const os::Handle file = os::OpenToRead(fileName, &error);
    if (file == os::kNoHandle) throw unreadable(error);
    QByteArray bytes;
    char buffer[65536];
    for (;;) {
        const std::int64_t n = os::Read(file, buffer, sizeof buffer, &error);
        if (n < 0) {
            os::Close(file);
            throw unreadable(error);
        }
        if (n == 0) break;
        bytes.append(buffer, qsizetype(n));
    }
    os::Close(file);
    return bytes;
}

// The values of [DBConfig] in an INI file as written: the text after the
// first "=" without the blanks around it, and without its double quotes when
// the whole value stands in them. QSettings would read a value with a comma
// as a list ("host,1433" becoming an empty server when read as text), end it
// at a semicolon (a comment to it) and take a backslash as an escape
// ("srv\inst" becoming "srvnst"); none of these belongs to a server name or a
// password. The last line of a key wins, as in QSettings.
std::map<QString, QString> IniValues(const QString& fileName) {
    std::map<QString, QString> values;
    const QString text = DecodeSettingsText(ReadSettingsFile(fileName), os::FromAnsiCodePage);
    bool inSection = false;
    for (const QString& raw : text.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
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

// Every key with its default.
template <typename Value>
DbSettings FromValues(const Value& value) {
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

}  // namespace

QString DecodeSettingsText(const QByteArray& bytes, QString (*ansi)(const QByteArray&)) {
    // Notepad marks UTF-8 and "Unicode" (UTF-16) files with a byte-order mark.
    if (bytes.startsWith("\xEF\xBB\xBF")) return QString::fromUtf8(bytes.mid(3));
    if (bytes.startsWith("\xFF\xFE")) return QStringDecoder(QStringDecoder::Utf16LE)(bytes.mid(2));
    if (bytes.startsWith("\xFE\xFF")) return QStringDecoder(QStringDecoder::Utf16BE)(bytes.mid(2));
    // GBK text is hardly ever valid UTF-8, and ASCII reads the same either way.
    // Stateless: a sequence cut at the end is an error too, not kept for more.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8(bytes);
    if (!utf8.hasError()) return text;
    return ansi(bytes);
}

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
    return FromValues(value);
}

DbSettings ReadDbSettings() {
    // Where the program we replace kept them, so that an office that switches
    // needs no new settings; only then the INI file.
    if (const auto registry = os::RegistryDbConfig()) {
        const auto value = [&registry](const char* key, const QString& fallback) {
            // Names in the registry are not case-sensitive.
            for (const auto& [name, text] : *registry)
                if (name.compare(QLatin1String(key), Qt::CaseInsensitive) == 0) return text;
            return fallback;
        };
        return FromValues(value);
    }
    QSettings store(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("云栖账房"),
                    QStringLiteral("云栖账房"));
    return ReadDbSettings(store);
}

}  // namespace yunqi
