#pragma once

#include <QString>

namespace yunqi {

// Every run-time error number the program raises, in one place. Where the
// platform or a driver has a number of its own, that number is used, so that
// an operator's report of "error 94" means what it always meant.
enum class ErrorCode : long {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    CannotOpenDatabaseFile = 14,  // the embedded engine's own number
    FileNotFound = 53,
    PathFileAccess = 75,
    PathNotFound = 76,
    InvalidUseOfNull = 94,
    SyntaxError = 102,    // the server's number for a malformed statement
    GridSubscript = 381,  // the grid's subscript out of range
    TooManyCellFormats = 1004,
    NoCurrentRecord = 3021,
    ItemNotFound = 3265,
    ConnectionFailed = 3704,
    InvalidRowValue = 30009,
    InvalidColValue = 30010,
    ProviderError = -2147467259,  // a provider failure without a native number
};

// The language of the platform's descriptions: the desktop program speaks
// Chinese, as the platform did on the offices' machines; the companion keeps
// the English texts its callers read.
enum class ErrorLanguage { English, Chinese };
void SetErrorLanguage(ErrorLanguage language);
ErrorLanguage CurrentErrorLanguage();

// The text of a catalogued error, as the platform words it in the language
// set. A driver's or server's own text is kept as the driver gives it.
QString ErrorText(ErrorCode code);
QString ErrorText(ErrorCode code, ErrorLanguage language);

}  // namespace yunqi
