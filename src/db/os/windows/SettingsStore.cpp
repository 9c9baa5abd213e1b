// Read through the wide-character calls: the key's name is Chinese, which
// the ANSI code page of an English system cannot spell.
#include "db/os/SettingsStore.h"

#include <windows.h>

#include <string>

namespace yunqi::os {

namespace {

const wchar_t kDbConfigKey[] = L"Software\\VB and VBA Program Settings\\云栖账房\\DBConfig";

}  // namespace

std::optional<std::map<QString, QString>> RegistryDbConfig() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kDbConfigKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return std::nullopt;
    std::map<QString, QString> values;
    std::wstring name(16384, L'\0');
    for (DWORD i = 0;; ++i) {
        DWORD nameSize = DWORD(name.size());
        DWORD type = 0, bytes = 0;
        const LONG found =
            RegEnumValueW(key, i, name.data(), &nameSize, nullptr, &type, nullptr, &bytes);
        if (found == ERROR_NO_MORE_ITEMS) break;
        if (found != ERROR_SUCCESS) continue;
        // Saved as text; a value of another type is not one of ours.
        if (type != REG_SZ && type != REG_EXPAND_SZ) continue;
        std::wstring data(bytes / sizeof(wchar_t) + 1, L'\0');
        DWORD dataSize = DWORD(data.size() * sizeof(wchar_t));
        nameSize = DWORD(name.size());
        if (RegEnumValueW(key, i, name.data(), &nameSize, nullptr, &type,
                          reinterpret_cast<BYTE*>(data.data()), &dataSize) != ERROR_SUCCESS)
            continue;
        // The stored text may or may not end in its NUL.
        data.resize(dataSize / sizeof(wchar_t));
        while (!data.empty() && data.back() == L'\0') data.pop_back();
        values[QString::fromWCharArray(name.data(), qsizetype(nameSize))] =
            QString::fromStdWString(data);
    }
    RegCloseKey(key);
    return values;
}

QString FromAnsiCodePage(const QByteArray& bytes) {
    if (bytes.isEmpty()) return QString();
    const int n = MultiByteToWideChar(CP_ACP, 0, bytes.constData(), int(bytes.size()), nullptr, 0);
    std::wstring text(std::size_t(n), L'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.constData(), int(bytes.size()), text.data(), n);
    return QString::fromStdWString(text);
}

}  // namespace yunqi::os
