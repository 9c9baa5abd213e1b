#include "shell/Recordset.h"

#include <QSqlRecord>

#include "frame/RuntimeError.h"

Recordset::Recordset(QSqlQuery query) : query_(std::move(query)) {
    const QSqlRecord record = query_.record();
    names_.reserve(record.count());
    for (int i = 0; i < record.count(); ++i) {
        // Some ODBC drivers pad wide column names with NULs.
        QString name = record.fieldName(i);
        int nul = name.indexOf(QChar(0));
        if (nul >= 0) name.truncate(nul);
        names_ << name;
    }
    atEnd_ = !query_.next();
    if (atEnd_) query_.finish();
}

void Recordset::MoveNext() {
    if (atEnd_)
        throw RuntimeError(
            3021,
            QStringLiteral("Either BOF or EOF is True, or the current record has been deleted."));
    atEnd_ = !query_.next();
    if (atEnd_) query_.finish();
}

int Recordset::IndexOf(const QString& name) const {
    for (int i = 0; i < names_.size(); ++i)
        if (names_[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    throw RuntimeError(3265, QStringLiteral("Item cannot be found in the collection corresponding "
                                            "to the requested name or ordinal."));
}

bool Recordset::IsNull(int index) const {
    if (atEnd_)
        throw RuntimeError(
            3021,
            QStringLiteral("Either BOF or EOF is True, or the current record has been deleted."));
    return query_.isNull(index);
}

QVariant Recordset::Value(int index) const {
    if (index < 0 || index >= names_.size())
        throw RuntimeError(3265, QStringLiteral("Item cannot be found in the collection "
                                                "corresponding to the requested name or ordinal."));
    if (IsNull(index)) return QVariant();
    return query_.value(index);
}
