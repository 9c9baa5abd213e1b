#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

namespace yunqi {

// The rows of a statement that Qt's ODBC driver has executed, fetched with
// the driver manager's own calls. Qt 6.4 fetches text as narrow characters
// and drops the driver's fetch warnings, so a value the driver cannot convert
// arrives as Null or with "?" in it; FreeTDS itself puts "?" for a byte it
// cannot convert inside a value, without a warning. Here narrow (varchar)
// text is fetched as its bytes and decoded strictly with the code page the
// session names, and other text as wide characters; a value that does not
// convert raises an error, never passes as another value.
class OdbcRows {
  public:
    // statement: the SQLHSTMT of an executed statement; narrowCodec: the code
    // page of narrow text ("GB18030", "windows-1252", "UTF-8"), or empty to
    // have the driver convert it to wide characters.
    OdbcRows(void* statement, const QByteArray& narrowCodec);

    const QStringList& Names() const { return names_; }
    // The next row; false at the end. Errors raise RuntimeError: the driver's
    // native number and text, or for a value that does not convert, the
    // column and the row's first value.
    bool Next();
    // The current row, Null as an invalid QVariant.
    const QVariantList& Row() const { return row_; }

  private:
    enum class Kind { Wide, Bytes, Narrow, Integer, Double, Date, Time, Timestamp };
    QVariant Read(int column);
    QByteArray ReadAll(int column, short cType, bool* isNull);

    void* statement_;
    QByteArray narrowCodec_;
    QStringList names_;
    std::vector<Kind> kinds_;
    QVariantList row_;
};

}  // namespace yunqi
