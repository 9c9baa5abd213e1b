#include "frame/ReportDefinition.h"
#include "reports/invoice/InvoiceStatement.h"

namespace yunqi {

const ReportDefinition& InvoiceReport() {
    static const ReportDefinition report{
        .command = QStringLiteral("invoice"),
        .menuEntry = QStringLiteral("增值税开票明细表"),
        .menuPosition = 2,
        .windowName = QStringLiteral("frm票据开票明细表New"),
        .texts =
            {
                .caption = QStringLiteral("增值税开票明细表"),
                .title = QStringLiteral("增值税开票明细表"),
                .conditionsTitle = QStringLiteral("增值税开票统计条件"),
                .dateRangeLabel = QStringLiteral("开票日期范围"),
                .extractingText = QStringLiteral("正在提取收费项目，请稍等......"),
                .noFeeItemsText = QStringLiteral("没有满足条件的开票数据,请重新设置条件!"),
                .runningText = QStringLiteral("正在进行增值税开票明细统计，请稍等......"),
                .noRowsText = QStringLiteral("无满足统计条件的数据，请重新设置统计条件！"),
                .exportedText = QStringLiteral("增值税开票明细表导出成功！"),
            },
        .conditions = ConditionsKind::DateWindow,
        .make = [](DatabaseSession& s) { return std::make_unique<InvoiceStatement>(s); },
    };
    return report;
}

}  // namespace yunqi
