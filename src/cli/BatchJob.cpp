#include "cli/BatchJob.h"

namespace yunqi {

QString StatusText(BatchJob::Status s) {
    switch (s) {
        case BatchJob::Status::Ok:
            return QStringLiteral("ok");
        case BatchJob::Status::Empty:
            return QStringLiteral("empty");
        default:
            return QStringLiteral("failed");
    }
}

}  // namespace yunqi
