#include "db/EmbeddedSchema.h"

namespace yunqi {

namespace EmbeddedSchema {

QStringList TableStatements() {
    return {
        "CREATE TABLE 票据 (票据编号 TEXT NOT NULL, 入库单编号 TEXT NOT NULL, 开票日期 TEXT, "
        "收款日期 TEXT, 作废日期 TEXT, 金额 REAL, 收款方式 TEXT, 付款人 TEXT, 地址 TEXT, "
        "被换票票据编号 TEXT, 开票部门编号 TEXT, 预开 INTEGER, 交易订单号 TEXT, "
        "PRIMARY KEY (票据编号, 入库单编号))",
        "CREATE TABLE 票据开票数据 (入库单编号 TEXT, 票据编号 TEXT, 收费项目代号 TEXT, "
        "金额 REAL, 税额 REAL)",
        "CREATE TABLE 票据入库单 (入库单编号 TEXT PRIMARY KEY, 票据类型编号 TEXT)",
        "CREATE TABLE 票据类型 (票据类型代号 TEXT PRIMARY KEY, 票据类型 TEXT, 定额 INTEGER)",
        "CREATE TABLE setupsfxm (dh TEXT PRIMARY KEY, xm TEXT, 税率 REAL, 收费类别 TEXT, "
        "显示名称 TEXT)",
        "CREATE TABLE 税控盘收费项目设置 (DH TEXT, 税率 REAL, 管理处 TEXT)",
        "CREATE TABLE 设置管理处 (对应部门代号 TEXT, gyd_dh TEXT, gyd_name TEXT)",
        "CREATE TABLE 职能部门new (职能部门编号 TEXT, 职能部门名称 TEXT, 终止日期 TEXT)",
        "CREATE TABLE 收款方式列表 (收款方式 TEXT)",
        "CREATE TABLE 岗位权限设置 (id INTEGER, 组代号 TEXT, 岗位代号 TEXT, 授权 INTEGER, "
        "Memo TEXT)",
        "CREATE TABLE GroupPrivilege (GroupID TEXT, FormName TEXT, Popedom INTEGER)",
    };
}

QStringList IndexStatements() {
    // The statements filter tickets by department and date and join the
    // lines by ticket number.
    return {
        "CREATE INDEX 票据_部门_开票日期 ON 票据 (开票部门编号, 开票日期)",
        "CREATE INDEX 票据_部门_收款日期 ON 票据 (开票部门编号, 收款日期)",
        // Month keys as the dialect writes them: a month's sums find their
        // tickets without reading the department's other years.
        "CREATE INDEX 票据_部门_开票月 ON 票据 (开票部门编号, strftime('%Y%m',开票日期))",
        "CREATE INDEX 票据_部门_收款月 ON 票据 (开票部门编号, strftime('%Y%m',收款日期))",
        "CREATE INDEX 票据_被换票 ON 票据 (被换票票据编号)",
        "CREATE INDEX 票据开票数据_票据 ON 票据开票数据 (票据编号, 入库单编号, 收费项目代号)",
        "CREATE INDEX 票据开票数据_项目 ON 票据开票数据 (收费项目代号)",
        "CREATE INDEX 税控盘收费项目设置_管理处 ON 税控盘收费项目设置 (管理处, DH)",
    };
}

QStringList AllStatements() { return TableStatements() + IndexStatements(); }

}  // namespace EmbeddedSchema

}  // namespace yunqi
