#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>

#include "core/RuntimeError.h"

namespace yunqi {

// The DBConfig section of the settings of application 云栖账房. Only read,
// never written. On Windows first the per-user registry key where the program
// we replace kept them (HKEY_CURRENT_USER\Software\VB and VBA Program
// Settings\云栖账房\DBConfig); where that key is absent, and elsewhere, an
// INI file: %APPDATA%\云栖账房\云栖账房.ini, on Linux
// $XDG_CONFIG_HOME/云栖账房/云栖账房.ini ($XDG_CONFIG_HOME defaults to
// ~/.config). The INI file is UTF-8 or UTF-16 by its byte-order mark, else
// UTF-8 where it is valid UTF-8, else the system's ANSI code page (Notepad's
// GBK on Chinese Windows). Every value is the text written,
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

// A settings file that exists and cannot be read (a folder, no permission):
// number 75, the file's name and the system's reason.
class SettingsUnreadable : public RuntimeError {
  public:
    using RuntimeError::RuntimeError;
};

QString DefaultDriver();
// Throws SettingsUnreadable.
DbSettings ReadDbSettings(QSettings& store);
// The store the desktop program and the companion read; throws
// SettingsUnreadable.
DbSettings ReadDbSettings();
// The text of a settings file: by its byte-order mark, else UTF-8 where the
// bytes are valid UTF-8, else ansi's reading of them.
QString DecodeSettingsText(const QByteArray& bytes, QString (*ansi)(const QByteArray&));

}  // namespace yunqi
