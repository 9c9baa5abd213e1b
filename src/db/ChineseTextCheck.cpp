#include "db/ChineseTextCheck.h"

#include "core/RuntimeError.h"

namespace yunqi {

namespace {

const char16_t kAdvice[] =
    u"如果该库 varchar 列里存的是 GBK 编码的中文（旧程序写入、排序规则却标为西文），"
    u"请在设置 [DBConfig] 中加上 VarcharEncoding=GBK；否则请数据库管理员把排序规则"
    u"改为中文排序规则（如 Chinese_PRC_CI_AS）。";

QString Refusal(const QString& collation, const QString& what) {
    return QStringLiteral("数据库的排序规则为 %1，%2。")
               .arg(collation.isEmpty() ? QStringLiteral("（未知）") : collation, what) +
           QString::fromUtf16(kAdvice);
}

}  // namespace

QByteArray CollationCodec(const QString& collation) {
    const auto starts = [&](const char* prefix) {
        return collation.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
    };
    if (collation.contains(QLatin1String("_UTF8"), Qt::CaseInsensitive)) return "UTF-8";
    if (starts("Chinese_PRC") || starts("Chinese_Simplified")) return "GB18030";
    if (starts("Latin1_General") || starts("SQL_Latin1_General_CP1_")) return "windows-1252";
    return QByteArray();
}

bool LooksMisread(const QString& text) {
    bool latin = false;
    for (const QChar c : text) {
        if (c.unicode() >= 0x4E00 && c.unicode() <= 0x9FFF) return false;
        if (c == QChar::ReplacementCharacter) return true;
        if (c.unicode() >= 0x80 && c.unicode() <= 0xFF) latin = true;
    }
    return latin;
}

void CheckChineseText(DatabaseSession& session, bool asGbk) {
    QString collation;
    {
        Recordset rs = session.Open(QStringLiteral(
            "Select Convert(nvarchar(128), DatabasePropertyEx(DB_Name(), 'Collation')) As "
            "Collation"));
        if (!rs.AtEnd() && !rs.IsNull(0)) collation = rs.Value(0).toString();
    }
    session.SetNarrowTextCodec(asGbk ? QByteArray("GB18030") : CollationCodec(collation));
    if (asGbk) collation += QStringLiteral("（按 VarcharEncoding=GBK 读取）");
    const struct {
        const char16_t* sql;
        const char16_t* what;
    } names[] = {
        {u"Select 票据类型 From 票据类型", u"票据类型"},
        {u"Select 职能部门名称 From 职能部门new", u"职能部门名称"},
    };
    for (const auto& n : names) {
        try {
            for (Recordset rs = session.Open(QString::fromUtf16(n.sql)); !rs.AtEnd();
                 rs.MoveNext()) {
                const QString text = rs.IsNull(0) ? QString() : rs.Value(0).toString();
                if (LooksMisread(text))
                    throw RuntimeError(
                        long(ErrorCode::ProviderError),
                        Refusal(collation, QStringLiteral("读出的%1“%2”不是正确的中文")
                                               .arg(QString::fromUtf16(n.what), text)));
            }
        } catch (const RuntimeError& e) {
            // Only a value that did not convert speaks of the text; any other
            // failure is told as the driver tells it.
            if (!e.description().contains(QStringLiteral("的值无法正确读出"))) throw;
            throw RuntimeError(e.number(), Refusal(collation, QStringLiteral("%1无法正确读出（%2）")
                                                                  .arg(QString::fromUtf16(n.what),
                                                                       e.description())));
        }
    }
}

}  // namespace yunqi
