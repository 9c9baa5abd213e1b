#pragma once

#include <QElapsedTimer>
#include <QString>

#include "frame/ExportSteps.h"

namespace yunqi {

// The step a single statement is in, on one line of standard error redrawn in
// place ("01 增值税开票明细表: writing the workbook, 1,200 of 27,592 rows"), as
// the batch shows its own. Drawn only when standard error is a terminal and
// --quiet was not given; the line is cleared before any message and when the
// run ends. As the export's controls it counts the workbook's rows.
class StatementProgress : public ExportFrame::ExportControls {
  public:
    StatementProgress(QString label, bool quiet);
    ~StatementProgress() override;
    StatementProgress(const StatementProgress&) = delete;
    StatementProgress& operator=(const StatementProgress&) = delete;

    void Step(const QString& text);
    // The workbook's rows: the count to come, then each row as it is written.
    void ShowProgressBar(int maximum) override;
    void SetProgressValue(int value) override;
    void SetButtonsVisible(bool) override {}
    void HideProgressBar() override {}
    void SetBusyLabelVisible(bool) override {}
    void SetBusy(bool) override {}

    // Clears the line of the running statement, if one is drawn, so that a
    // message starts at the left margin.
    static void ClearLine();

  private:
    void Draw(const QString& text);
    QString label_;
    bool shown_;
    bool drawn_ = false;
    int maximum_ = 0;
    QElapsedTimer sinceDrawn_;
    static StatementProgress* current_;
};

}  // namespace yunqi
