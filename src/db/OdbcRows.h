#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

namespace yunqi {

// The rows of a statement that Qt's ODBC driver has executed, fetched with
// the driver manager's own calls. Qt 6.4 fetches text as narrow characters
// and drops the driver's fetch warnings, so a value the driver cannot convert
// arrives as Null or with "?" in it. Here text is fetched as wide characters,
// or, for narrow columns whose bytes are GBK whatever the server's collation
// says, as the raw bytes decoded here; a value that does not convert raises
// an error, never passes as another value.
class OdbcRows {
  public:
    // statement: the SQLHSTMT of an executed statement.
    OdbcRows(void* statement, bool narrowTextIsGbk);

    const QStringList& Names() const { return names_; }
    // The next row; false at the end. Errors raise RuntimeError: the driver's
    // native number and text, or for a value that does not convert, the
    // column and the row's first value.
    bool Next();
    // The current row, Null as an invalid QVariant.
    const QVariantList& Row() const { return row_; }

  private:
    enum class Kind { Wide, Bytes, Gbk, Integer, Double, Date, Time, Timestamp };
    QVariant Read(int column);
    QByteArray ReadAll(int column, short cType, bool* isNull);

    void* statement_;
    bool narrowTextIsGbk_;
    QStringList names_;
    std::vector<Kind> kinds_;
    QVariantList row_;
};

}  // namespace yunqi
