#pragma once

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

// A forward-only, read-only result: fields by name and by position, Null as
// an invalid QVariant. Reading it to its end releases the connection.
class Recordset {
  public:
    explicit Recordset(QSqlQuery query);
    Recordset(Recordset&&) = default;
    Recordset& operator=(Recordset&&) = default;

    bool AtEnd() const { return atEnd_; }
    void MoveNext();

    int FieldCount() const { return names_.size(); }
    const QString& FieldName(int index) const { return names_[index]; }
    const QStringList& FieldNames() const { return names_; }
    // Case-insensitive, as the driver resolves names; an unknown name raises
    // the driver's "item not found" error.
    int IndexOf(const QString& name) const;

    bool IsNull(int index) const;
    QVariant Value(int index) const;
    QVariant Value(const QString& name) const { return Value(IndexOf(name)); }

  private:
    QSqlQuery query_;
    QStringList names_;
    bool atEnd_ = true;
};
