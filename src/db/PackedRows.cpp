#include "db/PackedRows.h"

#include <QDataStream>
#include <QDateTime>
#include <QIODevice>
#include <QVariant>
#include <cstring>

namespace yunqi {

namespace {

constexpr qsizetype kBlock = 1 << 20;

enum Tag : char { Null, Text, Double, LongLong, Int, DateTime, Date, Time, Bytes, Other, RowEnd };

template <typename T>
void Put(QByteArray& out, T value) {
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename T>
T Get(const char*& at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    at += sizeof value;
    return value;
}

void PutBytes(QByteArray& out, const QByteArray& bytes) {
    Put(out, qint32(bytes.size()));
    out.append(bytes);
}

QByteArray GetBytes(const char*& at) {
    const qint32 size = Get<qint32>(at);
    QByteArray bytes(at, size);
    at += size;
    return bytes;
}

}  // namespace

void PackedRows::Add(const QVariantList& row) {
    if (blocks_.empty() || blocks_.back().size() >= kBlock) {
        blocks_.emplace_back();
        blocks_.back().reserve(kBlock + 4096);
    }
    QByteArray& out = blocks_.back();
    for (const QVariant& v : row) {
        if (!v.isValid()) {
            out.append(Null);
            continue;
        }
        switch (v.typeId()) {
            case QMetaType::QString:
                out.append(Text);
                PutBytes(out, v.toString().toUtf8());
                break;
            case QMetaType::Double:
                out.append(Double);
                Put(out, v.toDouble());
                break;
            case QMetaType::LongLong:
                out.append(LongLong);
                Put(out, v.toLongLong());
                break;
            case QMetaType::Int:
                out.append(Int);
                Put(out, v.toInt());
                break;
            case QMetaType::QDateTime: {
                const QDateTime t = v.toDateTime();
                out.append(DateTime);
                Put(out, t.date().toJulianDay());
                Put(out, t.time().msecsSinceStartOfDay());
                break;
            }
            case QMetaType::QDate:
                out.append(Date);
                Put(out, v.toDate().toJulianDay());
                break;
            case QMetaType::QTime:
                out.append(Time);
                Put(out, v.toTime().msecsSinceStartOfDay());
                break;
            case QMetaType::QByteArray:
                out.append(Bytes);
                PutBytes(out, v.toByteArray());
                break;
            default: {
                QByteArray any;
                QDataStream stream(&any, QIODevice::WriteOnly);
                stream << v;
                out.append(Other);
                PutBytes(out, any);
            }
        }
    }
    out.append(RowEnd);
}

bool PackedRows::Take(QVariantList* row) {
    if (blocks_.empty()) return false;
    row->clear();
    const char* at = blocks_.front().constData() + readAt_;
    for (char tag; (tag = *at++) != RowEnd;) {
        switch (tag) {
            case Null:
                *row << QVariant();
                break;
            case Text:
                *row << QString::fromUtf8(GetBytes(at));
                break;
            case Double:
                *row << Get<double>(at);
                break;
            case LongLong:
                *row << Get<qlonglong>(at);
                break;
            case Int:
                *row << Get<int>(at);
                break;
            case DateTime: {
                const QDate date = QDate::fromJulianDay(Get<qint64>(at));
                *row << QDateTime(date, QTime::fromMSecsSinceStartOfDay(Get<int>(at)));
                break;
            }
            case Date:
                *row << QDate::fromJulianDay(Get<qint64>(at));
                break;
            case Time:
                *row << QTime::fromMSecsSinceStartOfDay(Get<int>(at));
                break;
            case Bytes:
                *row << GetBytes(at);
                break;
            default: {
                QVariant v;
                QDataStream in(GetBytes(at));
                in >> v;
                *row << v;
            }
        }
    }
    readAt_ = at - blocks_.front().constData();
    if (readAt_ >= blocks_.front().size()) {
        blocks_.pop_front();
        readAt_ = 0;
    }
    return true;
}

}  // namespace yunqi
