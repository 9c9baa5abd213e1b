#include "frame/DetailRows.h"

namespace yunqi {

namespace {
const QString kEmpty;
}

DetailRows::DetailRows(int feeColumnCount) : feeColumns_(feeColumnCount) { Append(); }

int DetailRows::Append() {
    dateText_.emplace_back();
    ticketNo_.emplace_back();
    payMethod_.emplace_back();
    payer_.emplace_back();
    kind_.push_back(Kind::None);
    flags_.push_back(0);
    rowTotal_.push_back(0);
    fees_.resize(fees_.size() + feeColumns_, 0.0);
    return UpperBound();
}

void DetailRows::SetTicket(int r, QString no, Kind kind) {
    ticketNo_[r] = std::move(no);
    kind_[r] = kind;
}

const QString& DetailRows::NumberIf(int r, Kind k) const {
    return kind_[r] == k ? ticketNo_[r] : kEmpty;
}

}  // namespace yunqi
