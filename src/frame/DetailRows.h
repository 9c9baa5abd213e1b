#pragma once

#include <QString>
#include <cstdint>
#include <span>
#include <vector>

namespace yunqi {

// The rows of a ticket statement, kept compactly: the ticket number once with
// its kind instead of four number fields, and the money of all rows in one
// flat array. Index 0 exists and is never used; rows are 1 to UpperBound().
class DetailRows {
  public:
    enum class Kind : std::uint8_t { None, Special, Ordinary, Electronic, Receipt };

    explicit DetailRows(int feeColumnCount = 0);

    int FeeColumnCount() const { return feeColumns_; }
    int UpperBound() const { return int(dateText_.size()) - 1; }

    // Appends a row with all money 0 and returns its index.
    int Append();

    const QString& DateText(int r) const { return dateText_[r]; }
    void SetDateText(int r, QString text) { dateText_[r] = std::move(text); }
    const QString& TicketNo(int r) const { return ticketNo_[r]; }
    Kind TicketKind(int r) const { return kind_[r]; }
    void SetTicket(int r, QString no, Kind kind);
    // The four number fields: the ticket number under its kind, else empty.
    const QString& SpecialNo(int r) const { return NumberIf(r, Kind::Special); }
    const QString& OrdinaryNo(int r) const { return NumberIf(r, Kind::Ordinary); }
    const QString& ElectronicNo(int r) const { return NumberIf(r, Kind::Electronic); }
    const QString& ReceiptNo(int r) const { return NumberIf(r, Kind::Receipt); }
    const QString& NumberIf(int r, Kind k) const;

    // j from 1 to FeeColumnCount().
    double FeeAmount(int r, int j) const { return fees_[Offset(r, j)]; }
    void SetFeeAmount(int r, int j, double v) { fees_[Offset(r, j)] = v; }
    // The row's money columns 1 to FeeColumnCount() as one span, index 0 for column 1.
    std::span<double> Fees(int r) {
        return {fees_.data() + Offset(r, 1), std::size_t(feeColumns_)};
    }

    const QString& PayMethod(int r) const { return payMethod_[r]; }
    void SetPayMethod(int r, QString text) { payMethod_[r] = std::move(text); }
    const QString& PayerText(int r) const { return payer_[r]; }
    void SetPayerText(int r, QString text) { payer_[r] = std::move(text); }
    double RowTotal(int r) const { return rowTotal_[r]; }
    void SetRowTotal(int r, double v) { rowTotal_[r] = v; }
    bool IsVoided(int r) const { return flags_[r] & kVoided; }
    bool IsReplaced(int r) const { return flags_[r] & kReplaced; }
    void SetFlags(int r, bool voided, bool replaced) {
        flags_[r] = (voided ? kVoided : 0) | (replaced ? kReplaced : 0);
    }

  private:
    static constexpr std::uint8_t kVoided = 1, kReplaced = 2;
    std::size_t Offset(int r, int j) const { return std::size_t(r) * feeColumns_ + (j - 1); }

    int feeColumns_;
    std::vector<QString> dateText_, ticketNo_, payMethod_, payer_;
    std::vector<Kind> kind_;
    std::vector<std::uint8_t> flags_;
    std::vector<double> fees_, rowTotal_;
};

}  // namespace yunqi
