#include "frame/ReportDefinition.h"
#include "reports/parking/ParkingStatement.h"

namespace yunqi {

const ReportDefinition& ParkingReport() {
    static const ReportDefinition report{
        .command = QStringLiteral("parking"),
        .menuEntry = QStringLiteral("停车费明细表"),
        .menuPosition = 1,
        .windowName = QStringLiteral("frm停车费明细表New"),
        .texts =
            {
                .caption = QStringLiteral("停车费明细表"),
                .title = QStringLiteral("停车费明细表"),
                .conditionsTitle = QStringLiteral("停车费统计条件"),
                .dateRangeLabel = QStringLiteral("收款日期范围"),
                .extractingText = QStringLiteral("正在提取停车费项目，请稍等......"),
                .noFeeItemsText = QStringLiteral("没有满足条件的开票数据,请重新设置条件!"),
                .runningText = QStringLiteral("正在进行停车费明细统计，请稍等......"),
                .noRowsText = QStringLiteral("无满足统计条件的数据，请重新设置统计条件！"),
                .exportedText = QStringLiteral("停车费明细表导出成功！"),
            },
        .conditions = ConditionsKind::DateWindow,
        // Command6 lays the header before it disables itself.
        .headerBeforeDisable = true,
        .make = [](DatabaseSession& s) { return std::make_unique<ParkingStatement>(s); },
    };
    return report;
}

}  // namespace yunqi
