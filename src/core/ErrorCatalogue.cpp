#include "core/ErrorCatalogue.h"

namespace yunqi {

namespace {

ErrorLanguage language = ErrorLanguage::English;

struct Texts {
    const char* english;
    const char* chinese;
};

Texts TextsOf(ErrorCode code) {
    // clang-format off
    switch (code) {
    case ErrorCode::InvalidProcedureCall: return {"Invalid procedure call or argument", "无效的过程调用或参数"};
    case ErrorCode::Overflow: return {"Overflow", "溢出"};
    case ErrorCode::SubscriptOutOfRange: return {"Subscript out of range", "下标越界"};
    case ErrorCode::DivisionByZero: return {"Division by zero", "除数为零"};
    case ErrorCode::TypeMismatch: return {"Type mismatch", "类型不匹配"};
    // The embedded engine's and the server's own words, in both.
    case ErrorCode::CannotOpenDatabaseFile: return {"unable to open database file", "unable to open database file"};
    case ErrorCode::FileNotFound: return {"File not found", "文件未找到"};
    case ErrorCode::PathFileAccess: return {"Path/File access error", "路径/文件访问错误"};
    case ErrorCode::PathNotFound: return {"Path not found", "路径未找到"};
    case ErrorCode::InvalidUseOfNull: return {"Invalid use of Null", "无效使用 Null"};
    case ErrorCode::SyntaxError: return {"Incorrect syntax near ')'.", "Incorrect syntax near ')'."};
    case ErrorCode::GridSubscript: return {"Subscript out of range", "下标越界"};
    case ErrorCode::TooManyCellFormats: return {"Too many different cell formats.", "不同的单元格格式太多。"};
    case ErrorCode::NoCurrentRecord:
        return {"Either BOF or EOF is True, or the current record has been deleted.",
                "BOF 或 EOF 中有一个是“真”，或者当前的记录已被删除。"};
    case ErrorCode::ItemNotFound:
        return {"Item cannot be found in the collection corresponding to the requested name or ordinal.",
                "在对应所需名称或序数的集合中，未找到项目。"};
    case ErrorCode::ConnectionFailed: return {"数据库连接失败!", "数据库连接失败!"};
    case ErrorCode::InvalidRowValue: return {"Invalid Row value", "无效的行值"};
    case ErrorCode::InvalidColValue: return {"Invalid Col value", "无效的列值"};
    case ErrorCode::ProviderError: return {"Unspecified error", "未指定的错误"};
    }
    // clang-format on
    return {"", ""};
}

}  // namespace

void SetErrorLanguage(ErrorLanguage l) { language = l; }
ErrorLanguage CurrentErrorLanguage() { return language; }

QString ErrorText(ErrorCode code) { return ErrorText(code, language); }

QString ErrorText(ErrorCode code, ErrorLanguage l) {
    const Texts texts = TextsOf(code);
    return QString::fromUtf8(l == ErrorLanguage::Chinese ? texts.chinese : texts.english);
}

}  // namespace yunqi
