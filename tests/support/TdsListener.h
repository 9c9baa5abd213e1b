#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

namespace yunqi {

// One run of tests/db/tds_listener.py on a free port. It stops after one
// session, or after 40 s (600 s when serving), which outlasts the driver's
// login time-out of 30 s, so that a stalled login shows as the driver's
// time-out.
struct TdsListener {
    explicit TdsListener(QStringList args) {
        args.prepend(QStringLiteral(YUNQI_TEST_DIR "/db/tds_listener.py"));
        process_.start(QStringLiteral("/usr/bin/python3"), args);
        if (!process_.waitForReadyRead(10000)) return;
        refusal_ = QString::fromUtf8(process_.readLine()).trimmed();
        if (refusal_.startsWith(QLatin1String("port "))) port_ = refusal_.mid(5);
    }
    ~TdsListener() { process_.waitForFinished(45000); }  // else killed by QProcess
    QString port_, refusal_;  // the port, or (without one) why it did not start
    // The records written until it stopped: browser requests, the login and
    // (serving) the last query.
    QJsonObject Records() {
        process_.waitForFinished(45000);
        QJsonObject all;
        for (const QByteArray& line : process_.readAllStandardOutput().split('\n')) {
            const QJsonObject record = QJsonDocument::fromJson(line).object();
            for (auto i = record.begin(); i != record.end(); ++i) all[i.key()] = i.value();
        }
        return all;
    }
    QProcess process_;
};

}  // namespace yunqi
