#pragma once

#include <QByteArray>
#include <QVariant>
#include <deque>

namespace yunqi {

// Rows kept in memory in a packed form, read back once in order: a tag byte
// and the value's bytes a field (text as UTF-8), in blocks of about a
// megabyte that are freed as they are read. A QVariant a field would take
// several times the room for a long result.
class PackedRows {
  public:
    void Add(const QVariantList& row);
    // The first row not yet taken, into *row; false when none is left.
    bool Take(QVariantList* row);

  private:
    std::deque<QByteArray> blocks_;
    qsizetype readAt_ = 0;
};

}  // namespace yunqi
