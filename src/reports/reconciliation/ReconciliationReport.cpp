#include "frame/ReportDefinition.h"
#include "reports/reconciliation/ReconciliationStatement.h"

namespace yunqi {

const ReportDefinition& ReconciliationReport() {
    static const ReportDefinition report{
        .command = QStringLiteral("reconciliation"),
        .menuEntry = QStringLiteral("开票票据核对表"),
        .menuPosition = 4,
        .windowName = QStringLiteral("frm票据核对表New"),
        .texts =
            {
                .caption = QStringLiteral("增值税开票票据核对表"),
                .title = QStringLiteral("增值税开票票据核对表"),
                .conditionsTitle = QStringLiteral("增值税票据核对统计条件"),
                .dateRangeLabel = QStringLiteral("设定开票年月"),
                .extractingText = QStringLiteral("正在提取收费项目,请稍等......"),
                .noFeeItemsText = QStringLiteral("没有满足条件的开票数据,请重新设置条件!"),
                .runningText = QStringLiteral("正在生成票据核对表，请稍等......"),
                .exportedText = QStringLiteral("票据核对表导出成功！"),
            },
        .conditions = ConditionsKind::YearMonths,
        .make = [](DatabaseSession& s) { return std::make_unique<ReconciliationStatement>(s); },
    };
    return report;
}

}  // namespace yunqi
