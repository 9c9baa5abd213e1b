#include "frame/ReportDefinition.h"
#include "reports/reconciliation/ReconciliationStatement.h"

namespace yunqi {

const ReportDefinition& ReconciliationReport() {
    static const ReportDefinition report = [] {
        ReportDefinition r;
        r.command = QStringLiteral("reconciliation");
        r.menuEntry = QStringLiteral("开票票据核对表");
        r.menuPosition = 4;
        r.windowName = QStringLiteral("frm票据核对表New");
        r.texts.caption = QStringLiteral("增值税开票票据核对表");
        r.texts.title = QStringLiteral("增值税开票票据核对表");
        r.texts.conditionsTitle = QStringLiteral("增值税票据核对统计条件");
        r.texts.dateRangeLabel = QStringLiteral("设定开票年月");
        r.texts.extractingText = QStringLiteral("正在提取收费项目,请稍等......");
        r.texts.noFeeItemsText = QStringLiteral("没有满足条件的开票数据,请重新设置条件!");
        r.texts.runningText = QStringLiteral("正在生成票据核对表，请稍等......");
        r.texts.exportedText = QStringLiteral("票据核对表导出成功！");
        r.conditions = ConditionsKind::YearMonths;
        r.make = [](DatabaseSession& s) { return std::make_unique<ReconciliationStatement>(s); };
        return r;
    }();
    return report;
}

}  // namespace yunqi
