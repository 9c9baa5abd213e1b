#pragma once

#include <QSettings>
#include <QString>

namespace yunqi {

// The DBConfig section of the settings of application 云栖账房. Only read,
// never written. An INI file; on Linux $XDG_CONFIG_HOME/云栖账房/云栖账房.ini
// ($XDG_CONFIG_HOME defaults to ~/.config). Every value is the text written,
// blanks around it and enclosing double quotes aside: "Svr=host,1433" is the
// server host,1433, "Svr=srv\inst" the server srv\inst, "PWD=a;b" the
// password a;b, and PWD=" x " the password of three characters " x ".
struct DbSettings {
    QString Edition;  // default "2000"
    QString Svr;
    QString UID;
    QString PWD;
    QString DBname;
    // Our own key: the ODBC driver's name, or "SQLite" for the embedded
    // engine, in which case DBname is the ledger file.
    QString Driver;
    // Our own key: an ODBC data source that names server, port, protocol
    // version and encryption in place of Svr and Edition; UID, PWD and DBname
    // still come from here.
    QString DSN;
    // Our own key: "GBK" reads the bytes of varchar text as GBK whatever
    // collation the server states (a server that holds GBK under a Latin1
    // label); empty follows the server.
    QString VarcharEncoding;
};

QString DefaultDriver();
DbSettings ReadDbSettings(QSettings& store);
// The store the desktop program and the companion read.
DbSettings ReadDbSettings();

}  // namespace yunqi
