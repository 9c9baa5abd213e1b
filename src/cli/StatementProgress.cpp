#include "cli/StatementProgress.h"

#include <QLocale>
#include <QTextStream>
#include <cstdio>

#include "cli/os/Console.h"

namespace yunqi {

StatementProgress* StatementProgress::current_ = nullptr;

StatementProgress::StatementProgress(QString label, bool quiet)
    : label_(std::move(label)), shown_(!quiet && IsTerminal(stderr)) {
    current_ = this;
}

StatementProgress::~StatementProgress() {
    ClearLine();
    if (current_ == this) current_ = nullptr;
}

void StatementProgress::Step(const QString& text) { Draw(text); }

void StatementProgress::ShowProgressBar(int maximum) {
    maximum_ = maximum;
    SetProgressValue(0);
}

void StatementProgress::SetProgressValue(int value) {
    // A redraw every tenth of a second is enough to watch, and costs nothing.
    if (!shown_ || (drawn_ && value != maximum_ && sinceDrawn_.elapsed() < 100)) return;
    static const QLocale grouping(QLocale::English);
    QString text = QStringLiteral("writing the workbook, ") + grouping.toString(value);
    if (maximum_ > 0) text += QStringLiteral(" of ") + grouping.toString(maximum_);
    Draw(text + QStringLiteral(" rows"));
}

void StatementProgress::Draw(const QString& text) {
    if (!shown_) return;
    QTextStream(stderr) << "\r\033[K" << label_ << ": " << text << Qt::flush;
    drawn_ = true;
    sinceDrawn_.start();
}

void StatementProgress::ClearLine() {
    if (!current_ || !current_->drawn_) return;
    QTextStream(stderr) << "\r\033[K" << Qt::flush;
    current_->drawn_ = false;
}

}  // namespace yunqi
