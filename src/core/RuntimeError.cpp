#include "core/RuntimeError.h"

#include <cstdio>
#include <cstdlib>

namespace yunqi {

RuntimeError::RuntimeError(long number, QString description)
    : std::runtime_error(description.toStdString()),
      number_(number),
      description_(std::move(description)) {}

QString RuntimeError::NumberedText() const {
    return QStringLiteral("error ") + QString::number(number_) + QStringLiteral(": ") +
           description_;
}

RuntimeError::RuntimeError(ErrorCode code) : RuntimeError(long(code), ErrorText(code)) {}

RuntimeError::RuntimeError(ErrorCode code, const QString& detail)
    : RuntimeError(long(code), ErrorText(code) + QStringLiteral(": ") + detail) {}

RuntimeError RuntimeError::InvalidProcedureCall() {
    return RuntimeError(ErrorCode::InvalidProcedureCall);
}
RuntimeError RuntimeError::Overflow() { return RuntimeError(ErrorCode::Overflow); }
RuntimeError RuntimeError::SubscriptOutOfRange() {
    return RuntimeError(ErrorCode::SubscriptOutOfRange);
}
RuntimeError RuntimeError::TypeMismatch() { return RuntimeError(ErrorCode::TypeMismatch); }
RuntimeError RuntimeError::InvalidUseOfNull() { return RuntimeError(ErrorCode::InvalidUseOfNull); }

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
