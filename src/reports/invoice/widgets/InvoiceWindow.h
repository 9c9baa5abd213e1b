#pragma once

#include "frame/widgets/ReportWindow.h"

// 增值税开票明细表: the report window with the invoice statement and workbook.
class frm票据开票明细表New : public ReportWindow {
  public:
    frm票据开票明细表New(DatabaseSession& session, QWidget* parent = nullptr);
};
