#include "db/Settings.h"

namespace yunqi {

QString DefaultDriver() {
#ifdef Q_OS_WIN
    return QStringLiteral("SQL Server");
#else
    return QStringLiteral("FreeTDS");
#endif
}

DbSettings ReadDbSettings(QSettings& store) {
    store.beginGroup(QStringLiteral("DBConfig"));
    DbSettings s;
    s.Edition = store.value(QStringLiteral("Edition"), QStringLiteral("2000")).toString();
    s.Svr = store.value(QStringLiteral("Svr")).toString();
    s.UID = store.value(QStringLiteral("UID")).toString();
    s.PWD = store.value(QStringLiteral("PWD")).toString();
    s.DBname = store.value(QStringLiteral("DBname")).toString();
    s.Driver = store.value(QStringLiteral("Driver"), DefaultDriver()).toString();
    store.endGroup();
    return s;
}

DbSettings ReadDbSettings() {
    QSettings store(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("云栖账房"),
                    QStringLiteral("云栖账房"));
    return ReadDbSettings(store);
}

}  // namespace yunqi
