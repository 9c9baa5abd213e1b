#pragma once

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>

#include "core/RuntimeError.h"

class QSqlError;

namespace yunqi {

// A driver's error as a run-time error: its native number when it has one,
// else the provider's, with the driver's own text.
RuntimeError DatabaseError(const QSqlError& error);

// A forward-only, read-only result: fields by name and by position, Null as
// an invalid QVariant. Reading it to its end releases the connection.
class Recordset {
  public:
    // The reading state, shared with the session that opened it.
    class Cursor;

    // A read that fails (a damaged page met halfway) raises the driver's
    // error; it never passes for the end. With odbcNarrowCodec set, the rows
    // of the executed ODBC statement are fetched by OdbcRows (narrow text in
    // that code page, or empty for wide), not by Qt's driver.
    explicit Recordset(QSqlQuery query, std::optional<QByteArray> odbcNarrowCodec = std::nullopt);
    // The rows of an ODBC statement executed below Qt's driver, fetched by
    // OdbcRows; the recordset frees the statement.
    struct OdbcStatement {
        void* handle;
    };
    Recordset(OdbcStatement statement, const QByteArray& odbcNarrowCodec);
    Recordset(Recordset&&) = default;
    Recordset& operator=(Recordset&&) = default;
    ~Recordset();

    bool AtEnd() const;
    // Past the end: RuntimeError 3021.
    void MoveNext();

    int FieldCount() const;
    const QString& FieldName(int index) const;
    const QStringList& FieldNames() const;
    // Case-insensitive, as the driver resolves names; an unknown name raises
    // the driver's "item not found" error (3265).
    int IndexOf(const QString& name) const;

    // At the end: RuntimeError 3021; an unknown position: 3265.
    bool IsNull(int index) const;
    QVariant Value(int index) const;
    QVariant Value(const QString& name) const { return Value(IndexOf(name)); }

    std::weak_ptr<Cursor> Watch() const { return cursor_; }
    // Reads the rest of a result into memory and releases the statement, for
    // a connection that allows one open statement at a time. Reading goes on
    // from memory as before.
    static void ReadRestToMemory(const std::weak_ptr<Cursor>& cursor);

  private:
    void CheckField(int index) const;

    std::shared_ptr<Cursor> cursor_;
};

}  // namespace yunqi
