#include "core/RuntimeError.h"

#include <cstdio>
#include <cstdlib>

namespace yunqi {

RuntimeError::RuntimeError(long number, QString description)
    : std::runtime_error(description.toStdString()),
      number_(number),
      description_(std::move(description)) {}

RuntimeError RuntimeError::InvalidProcedureCall() {
    return {5, QStringLiteral("Invalid procedure call or argument")};
}
RuntimeError RuntimeError::Overflow() { return {6, QStringLiteral("Overflow")}; }
RuntimeError RuntimeError::SubscriptOutOfRange() {
    return {9, QStringLiteral("Subscript out of range")};
}
RuntimeError RuntimeError::TypeMismatch() { return {13, QStringLiteral("Type mismatch")}; }
RuntimeError RuntimeError::InvalidUseOfNull() {
    return {94, QStringLiteral("Invalid use of Null")};
}

namespace {
void DefaultHandler(const RuntimeError& error) {
    std::fprintf(stderr, "Run-time error '%ld':\n%s\n", error.number(),
                 error.description().toLocal8Bit().constData());
    std::exit(1);
}
RuntimeErrorHandler currentHandler = DefaultHandler;
}  // namespace

void SetRuntimeErrorHandler(RuntimeErrorHandler handler) {
    currentHandler = handler ? handler : DefaultHandler;
}

void ReportRuntimeError(const RuntimeError& error) { currentHandler(error); }

}  // namespace yunqi
