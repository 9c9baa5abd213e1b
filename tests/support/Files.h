#pragma once

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QStringList>

namespace yunqi::test {

// The hidden files of a folder: the temporary names ".NAME.XXXXXX".
inline QStringList HiddenFiles(const QString& dir) {
    QStringList hidden;
    for (const QString& name : QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System))
        if (name.startsWith(QLatin1Char('.'))) hidden << name;
    return hidden;
}

inline QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline void WriteAll(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    f.open(QIODevice::WriteOnly | QIODevice::Truncate);
    f.write(bytes);
}

inline mode_t FileType(const QString& path) {
    struct stat st {};
    if (::lstat(QFile::encodeName(path).constData(), &st) != 0) return 0;
    return st.st_mode & S_IFMT;
}

}  // namespace yunqi::test
