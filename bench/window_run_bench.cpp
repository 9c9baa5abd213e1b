// Wall time of a report window's run and export as the operator starts them
// (the button's click to the end of its handler), the median of five, and how
// often a 100 ms timer of the window's thread fired meanwhile.
//   window_run_bench [DB] [--report NAME] [--tickets N] [--export]
// Without DB a demo ledger of N tickets (default 200000) is made in /tmp.
// Department 01, the year 2024.
//   window_run_bench --connections DB | --connections-to HOST,PORT
// The time a run's own connection takes to open (the median of 20), on the
// ledger or on a server (tds_listener.py --reply serve --sessions 21).
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <algorithm>
#include <clocale>
#include <thread>

#include "cli/DemoDatabase.h"
#include "core/Dialogs.h"
#include "db/DatabaseSession.h"
#include "db/OpenDatabase.h"
#include "db/SessionState.h"
#include "frame/widgets/ReportWindow.h"
#include "reports/Reports.h"

using namespace yunqi;

namespace {

QTextStream out(stdout);

struct Timed {
    double ms = 0;
    int ticks = 0;
};

Timed Click(QWidget* w, const char* button) {
    int ticks = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] { ++ticks; });
    tick.start(100);
    QElapsedTimer clock;
    clock.start();
    w->findChild<QPushButton*>(QString::fromLatin1(button))->click();
    return {clock.nsecsElapsed() / 1e6, ticks};
}

void Report(const char* what, std::vector<Timed> runs) {
    std::sort(runs.begin(), runs.end(), [](auto& a, auto& b) { return a.ms < b.ms; });
    const Timed& median = runs[runs.size() / 2];
    out << what << ": median " << median.ms << " ms of " << runs.size() << " (" << runs.front().ms
        << " to " << runs.back().ms << "), timer ticks meanwhile " << median.ticks << "\n";
    out.flush();
}

// Opens a thread's own connection 20 times.
int Connections(DatabaseSession& session) {
    std::vector<Timed> opens;
    for (int i = 0; i < 20; ++i)
        std::thread([&] {
            QElapsedTimer clock;
            clock.start();
            DatabaseSession::ThreadConnection connection(session);
            opens.push_back({clock.nsecsElapsed() / 1e6, 0});
        }).join();
    Report("a run's own connection", opens);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    QStringList args = app.arguments().mid(1);
    int tickets = 200000;
    bool exporting = false;
    QString db, command = QStringLiteral("invoice");
    if (args.size() == 2 && args[0] == "--connections")
        return Connections(*DatabaseSession::OpenEmbedded(args[1]));
    if (args.size() == 2 && args[0] == "--connections-to") {
        if (!OpenDatabase({.Edition = "2012",
                           .Svr = args[1],
                           .UID = "出纳",
                           .PWD = "secret",
                           .DBname = "账房",
                           .Driver = "FreeTDS"}))
            return 1;
        const int status = Connections(*AppSession().SessionConnection);
        AppSession().SessionConnection.reset();  // before the application goes
        return status;
    }
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == "--report" && i + 1 < args.size())
            command = args[++i];
        else if (args[i] == "--tickets" && i + 1 < args.size())
            tickets = args[++i].toInt();
        else if (args[i] == "--export")
            exporting = true;
        else
            db = args[i];
    }
    const ReportDefinition* report = FindReport(command);
    if (!report) {
        out << "no report " << command << "\n";
        return 2;
    }
    if (db.isEmpty()) {
        db = QDir::temp().filePath(QStringLiteral("yunqi-bench-%1.sqlite").arg(tickets));
        if (!QFile::exists(db)) WriteDemoDatabase(db, tickets, 1);
    }
    RecordingDialogs dialogs;
    SetAppDialogs(&dialogs);
    auto session = DatabaseSession::OpenEmbedded(db);
    QWidget* w = NewReportWindow(*report, *session);
    w->resize(1400, 900);
    w->show();
    const bool paged = report->conditions == ConditionsKind::DateWindow;
    if (paged) {
        w->findChild<QDateEdit*>(QStringLiteral("DTPicker1(0)"))->setDate(QDate(2024, 1, 1));
        w->findChild<QDateEdit*>(QStringLiteral("DTPicker1(1)"))->setDate(QDate(2024, 12, 31));
    } else {
        w->findChild<QComboBox*>(QStringLiteral("Combo1"))->setCurrentText(QStringLiteral("2024"));
        w->findChild<QComboBox*>(QStringLiteral("Combo2"))->setCurrentText(QStringLiteral("01"));
        w->findChild<QComboBox*>(QStringLiteral("Combo3"))->setCurrentText(QStringLiteral("12"));
    }
    w->findChild<QListWidget*>(QStringLiteral("List1"))->setCurrentRow(0);
    QApplication::processEvents();
    std::vector<Timed> runs, exports;
    QTemporaryDir dir;
    for (int i = 0; i < 5; ++i) {
        if (paged) Click(w, "Command3");
        runs.push_back(Click(w, paged ? "Command6" : "Command3"));
        if (!exporting) continue;
        dialogs.saveAnswers = {dir.filePath(QStringLiteral("out.xlsx"))};
        exports.push_back(Click(w, "Command2"));
    }
    out << command << " on " << db << ", department 01, 2024; messages: "
        << dialogs.texts().join(QStringLiteral(" | ")).left(200) << "\n";
    Report(paged ? "Command6 (the statistics)" : "Command3 (the run)", runs);
    if (exporting) Report("Command2 (the export)", exports);
    delete w;
    return 0;
}
