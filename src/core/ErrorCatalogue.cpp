#include "core/ErrorCatalogue.h"

namespace yunqi {

QString ErrorText(ErrorCode code) {
    switch (code) {
    case ErrorCode::InvalidProcedureCall: return QStringLiteral("Invalid procedure call or argument");
    case ErrorCode::Overflow: return QStringLiteral("Overflow");
    case ErrorCode::SubscriptOutOfRange: return QStringLiteral("Subscript out of range");
    case ErrorCode::DivisionByZero: return QStringLiteral("Division by zero");
    case ErrorCode::TypeMismatch: return QStringLiteral("Type mismatch");
    case ErrorCode::CannotOpenDatabaseFile: return QStringLiteral("unable to open database file");
    case ErrorCode::FileNotFound: return QStringLiteral("File not found");
    case ErrorCode::PathFileAccess: return QStringLiteral("Path/File access error");
    case ErrorCode::PathNotFound: return QStringLiteral("Path not found");
    case ErrorCode::InvalidUseOfNull: return QStringLiteral("Invalid use of Null");
    case ErrorCode::SyntaxError: return QStringLiteral("Incorrect syntax near ')'.");
    case ErrorCode::GridSubscript: return QStringLiteral("Subscript out of range");
    case ErrorCode::TooManyCellFormats: return QStringLiteral("Too many different cell formats.");
    case ErrorCode::NoCurrentRecord:
        return QStringLiteral("Either BOF or EOF is True, or the current record has been deleted.");
    case ErrorCode::ItemNotFound:
        return QStringLiteral(
            "Item cannot be found in the collection corresponding to the requested name or "
            "ordinal.");
    case ErrorCode::ConnectionFailed: return QStringLiteral("数据库连接失败!");
    case ErrorCode::InvalidRowValue: return QStringLiteral("Invalid Row value");
    case ErrorCode::InvalidColValue: return QStringLiteral("Invalid Col value");
    case ErrorCode::ProviderError: return QStringLiteral("Unspecified error");
    }
    return QString();
}

}  // namespace yunqi
