#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "frame/SheetModel.h"

namespace yunqi {

// An .xlsx workbook of one sheet, written row by row as the sheet model
// completes its rows (the library's constant-memory mode: strings inline,
// each row once, in order). Formats are shared between cells of one style.
//
// A read-only file, a folder or a missing folder is refused when the writer
// is made, before any work. The workbook goes beside the target under a
// temporary name, is read back with CheckWorkbookFile on Close(), and only
// then renamed over the target; a device or FIFO is written in place (see
// OutputFile). Without Close(), or on a failure, an existing file stays as it
// was and no partial file is left. Throws RuntimeError (75 with the path and
// the reason; 76 for a missing folder).
class XlsxWriter : public SheetModel::RowSink {
  public:
    explicit XlsxWriter(const QString& path);
    ~XlsxWriter() override;
    XlsxWriter(const XlsxWriter&) = delete;
    XlsxWriter& operator=(const XlsxWriter&) = delete;

    void WriteRow(const SheetModel& sheet, int row) override;
    // After the sheet's last row: the file made final.
    void Close();

  private:
    struct State;
    std::unique_ptr<State> d_;
};

// The sheet that compose writes, streamed to path as its rows complete;
// beforeClose, when given, runs once the last row is written and may still
// throw to leave the target as it was. closeWith, when given, is handed the
// close (packing, checking, renaming) to run on whichever thread it likes; a
// copy of the close keeps the writer, so that a runner that is stopped may
// return while the close goes on and, stopped, throws the file away.
using CloseRunner = std::function<void(const std::function<void()>& close)>;
void StreamXlsx(const QString& path, const std::function<void(SheetModel&)>& compose,
                const std::function<void()>& beforeClose = {}, const CloseRunner& closeWith = {});

}  // namespace yunqi
