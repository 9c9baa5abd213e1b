#pragma once

#include <QString>
#include <optional>
#include <stdexcept>

#include "core/ErrorCatalogue.h"

namespace yunqi {

// A run-time error: number and description, as the platform reports them.
// Routines without an error trap let it travel to the top-level handler.
class RuntimeError : public std::runtime_error {
  public:
    // A driver's or server's own number and text.
    RuntimeError(long number, QString description);
    // A catalogued error with its text; a detail follows it after ": ".
    explicit RuntimeError(ErrorCode code);
    RuntimeError(ErrorCode code, const QString& detail);

    long number() const { return number_; }
    const QString& description() const { return description_; }
    // "error N: description", as the command line tells it.
    QString NumberedText() const;

    // The platform's own numbers.
    static RuntimeError InvalidProcedureCall();  // 5
    static RuntimeError Overflow();              // 6
    static RuntimeError SubscriptOutOfRange();   // 9
    static RuntimeError TypeMismatch();          // 13
    static RuntimeError InvalidUseOfNull();      // 94

  private:
    long number_;
    QString description_;
};

// What a routine's error trap caught and showed, if anything. The window has
// shown it and goes on; the companion ends with it.
using Trapped = std::optional<RuntimeError>;

// Where an untrapped error ends up. Production shows it and ends the process
// with a non-zero status; tests install a handler that records instead.
using RuntimeErrorHandler = void (*)(const RuntimeError&);
void SetRuntimeErrorHandler(RuntimeErrorHandler handler);
void ReportRuntimeError(const RuntimeError& error);

}  // namespace yunqi
