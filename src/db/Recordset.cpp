#include "db/Recordset.h"

#include <QSqlError>
#include <QSqlRecord>
#include <QSqlResult>
#include <utility>

#include "core/RuntimeError.h"
#include "core/StopRequest.h"
#include "db/OdbcApi.h"
#include "db/OdbcRows.h"
#include "db/PackedRows.h"

namespace yunqi {

namespace {

RuntimeError NoCurrentRecord() { return RuntimeError(ErrorCode::NoCurrentRecord); }

RuntimeError ItemNotFound() { return RuntimeError(ErrorCode::ItemNotFound); }

}  // namespace

RuntimeError DatabaseError(const QSqlError& error) {
    bool ok = false;
    const long number = error.nativeErrorCode().toLong(&ok);
    const QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    return RuntimeError(ok ? number : long(ErrorCode::ProviderError), text);
}

class Recordset::Cursor {
  public:
    Cursor(QSqlQuery q, std::optional<QByteArray> odbcText) : query(std::move(q)) {
        if (odbcText) {
            void* statement = OdbcHandle(query.result()->handle());
            if (!statement)
                throw RuntimeError(long(ErrorCode::ProviderError),
                                   QStringLiteral("No ODBC statement to read."));
            try {
                odbc = std::make_unique<OdbcRows>(statement, *odbcText);
            } catch (...) {
                Finish();
                throw;
            }
            names = odbc->Names();
        } else {
            const QSqlRecord record = query.record();
            names.reserve(record.count());
            for (int i = 0; i < record.count(); ++i) {
                // Some ODBC drivers pad wide column names with NULs.
                QString name = record.fieldName(i);
                const qsizetype nul = name.indexOf(QChar(0));
                if (nul >= 0) name.truncate(nul);
                names << name;
            }
        }
        Next();
    }

    Cursor(void* statement, const QByteArray& odbcText) : own(statement) {
        try {
            odbc = std::make_unique<OdbcRows>(statement, odbcText);
        } catch (...) {
            Finish();
            throw;
        }
        names = odbc->Names();
        Next();
    }

    ~Cursor() { Finish(); }
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    // The statement done with: the driver's result released.
    void Finish() {
        if (!own) {
            query.finish();
            return;
        }
        odbc.reset();
        Odbc().FreeHandle(SQL_HANDLE_STMT, std::exchange(own, nullptr));
    }

    void Next() {
        if (inMemory) {
            atEnd = !rows.Take(&current);
            return;
        }
        atEnd = !Fetch();
        if (atEnd) Finish();
    }

    // The next row; false at the end. A failed read is no end.
    bool Fetch() {
        if (odbc) {
            try {
                return odbc->Next();
            } catch (...) {
                Finish();
                throw;
            }
        }
        if (query.next()) return true;
        if (query.lastError().type() != QSqlError::NoError) {
            const RuntimeError error = DatabaseError(query.lastError());
            query.finish();
            throw error;
        }
        return false;
    }

    QVariantList Row() const {
        if (odbc) return odbc->Row();
        QVariantList row;
        row.reserve(names.size());
        for (int i = 0; i < names.size(); ++i)
            row << (query.isNull(i) ? QVariant() : query.value(i));
        return row;
    }

    void ReadRest() {
        if (inMemory || atEnd) return;
        current = Row();
        while (Fetch()) {
            if (odbc)
                rows.Add(odbc->Row());
            else
                rows.Add(Row());
        }
        Finish();
        odbc.reset();
        inMemory = true;
    }

    bool IsNull(int index) const {
        if (inMemory) return !current[index].isValid();
        return odbc ? !odbc->Row()[index].isValid() : query.isNull(index);
    }
    QVariant Value(int index) const {
        if (inMemory) return current[index];
        if (odbc) return odbc->Row()[index];
        return query.isNull(index) ? QVariant() : query.value(index);
    }

    QSqlQuery query;
    void* own = nullptr;  // a statement executed below Qt's driver
    std::unique_ptr<OdbcRows> odbc;
    QStringList names;
    bool atEnd = true;
    bool inMemory = false;
    QVariantList current;
    PackedRows rows;
};

Recordset::Recordset(QSqlQuery query, std::optional<QByteArray> odbcText)
    : cursor_(std::make_shared<Cursor>(std::move(query), odbcText)) {}

Recordset::Recordset(OdbcStatement statement, const QByteArray& odbcNarrowCodec)
    : cursor_(std::make_shared<Cursor>(statement.handle, odbcNarrowCodec)) {}

Recordset::~Recordset() = default;

bool Recordset::AtEnd() const { return cursor_->atEnd; }

void Recordset::MoveNext() {
    if (cursor_->atEnd) throw NoCurrentRecord();
    // Rows read after a stop request would be thrown away.
    ThrowIfStopRequested();
    cursor_->Next();
}

int Recordset::FieldCount() const { return cursor_->names.size(); }

const QString& Recordset::FieldName(int index) const {
    if (index < 0 || index >= FieldCount()) throw ItemNotFound();
    return cursor_->names[index];
}

const QStringList& Recordset::FieldNames() const { return cursor_->names; }

int Recordset::IndexOf(const QString& name) const {
    const QStringList& names = cursor_->names;
    for (int i = 0; i < names.size(); ++i)
        if (names[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    throw ItemNotFound();
}

void Recordset::CheckField(int index) const {
    if (index < 0 || index >= FieldCount()) throw ItemNotFound();
    if (cursor_->atEnd) throw NoCurrentRecord();
}

bool Recordset::IsNull(int index) const {
    CheckField(index);
    return cursor_->IsNull(index);
}

QVariant Recordset::Value(int index) const {
    CheckField(index);
    return cursor_->Value(index);
}

void Recordset::ReadRestToMemory(const std::weak_ptr<Cursor>& cursor) {
    if (auto c = cursor.lock()) c->ReadRest();
}

}  // namespace yunqi
